// The broadcast timer: picks, expands and sends a profile's next message.
#pragma once

#include <cstdint>
#include <string>

#include "game/game_reader.h"
#include "stats/info_texts.h"
#include "store/message_file.h"

namespace rotacasts {

/// The tick of every started profile. All profiles' ticks read the enable switch and the interval
/// that the settings window shows; what is sent is read from the profile's file on every tick.
class BroadcastTimer {
 public:
  BroadcastTimer(const HostServices& services, ProfileTables& tables, ErrorReporter& reporter,
                 GameReader& game, InfoTexts& infoTexts, MessageFile& store, SettingsView& window)
      : services_(services),
        tables_(tables),
        reporter_(reporter),
        game_(game),
        infoTexts_(infoTexts),
        store_(store),
        window_(window) {}

  /// One tick, once a minute, of the profile `Index`: sends at most one message. An error is
  /// reported under "tmrRT" for the current window profile.
  void tmrRT_Timer(std::int16_t Index);

  /// What a message says now: itself, or a placeholder's live text, on one line and without blanks
  /// at its ends. Errors of a live text are reported; its text is then what the reader falls back
  /// to.
  std::string LiveText(std::int32_t profileIndex, const std::string& message);

 private:
  enum class Pass { Ended, TriesNextMessage };
  Pass RunPass(std::int16_t index, Step& at);
  bool IsDue(std::int32_t index, Step& at);
  void Send(std::int16_t index, std::string text);

  const HostServices& services_;
  ProfileTables& tables_;
  ErrorReporter& reporter_;
  GameReader& game_;
  InfoTexts& infoTexts_;
  MessageFile& store_;
  SettingsView& window_;
};

}  // namespace rotacasts
