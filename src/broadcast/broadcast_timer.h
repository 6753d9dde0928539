// The broadcast timer: picks, expands and sends a profile's next message.
#pragma once

#include <cstdint>
#include <string>

#include "broadcast/live_texts.h"
#include "store/message_file.h"

namespace rotacasts {

/// The tick of every started profile. All profiles' ticks read the enable switch and the interval
/// that the settings window shows; what is sent is read from the profile's file on every tick.
class BroadcastTimer {
 public:
  BroadcastTimer(const HostServices& services, ProfileTables& tables, ErrorHandler& errors,
                 GameReader& game, LiveTexts& liveTexts, MessageFile& store, SettingsView& window)
      : services_(services),
        tables_(tables),
        errors_(errors),
        game_(game),
        liveTexts_(liveTexts),
        store_(store),
        window_(window) {}

  /// One tick, once a minute, of the profile `Index`: sends at most one message. An error is
  /// reported under "tmrRT" for the current window profile.
  void tmrRT_Timer(std::int16_t Index);

 private:
  enum class Pass { Ended, TriesNextMessage };
  Pass RunPass(std::int16_t index, Step& at);
  bool IsDue(std::int32_t index, Step& at);
  void Send(std::int16_t index, std::string text);

  const HostServices& services_;
  ProfileTables& tables_;
  ErrorHandler& errors_;
  GameReader& game_;
  LiveTexts& liveTexts_;
  MessageFile& store_;
  SettingsView& window_;
};

}  // namespace rotacasts
