// The broadcast timer: picks, expands and sends a profile's next message.
#pragma once

#include <cstdint>
#include <string>

#include "broadcast/pass.h"
#include "store/message_file.h"

namespace rotacasts {

/// The tick of every started profile. All profiles' ticks read the enable switch and the interval
/// that the settings window shows; what is sent is read from the profile's file on every tick.
class BroadcastTimer {
 public:
  BroadcastTimer(const HostServices& services, ProfileTables& tables, ErrorHandler& errors,
                 MessageStore& store, SettingsView& window)
      : services_(services), tables_(tables), errors_(errors), store_(store), window_(window) {}

  /// One tick, once a minute, of the profile `Index`: sends at most one message. An error is
  /// reported under "tmrRT" for the current window profile. A tick that is overtaken while it waits
  /// for a component or a box ends there: it sends nothing and moves no counter.
  void tmrRT_Timer(std::int16_t Index);

 private:
  const HostServices& services_;
  ProfileTables& tables_;
  ErrorHandler& errors_;
  MessageStore& store_;
  SettingsView& window_;
};

}  // namespace rotacasts
