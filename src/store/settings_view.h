// What the ticks and the remote commands see of the settings window.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

namespace rotacasts {

/// The window as every profile's ticks read it.
class BroadcastSettings {
 public:
  virtual ~BroadcastSettings() = default;
  /// False once the window is gone, for good; its controls can then still be read.
  virtual bool IsLoaded() const = 0;
  /// The enable switch: 0 off, 1 on, 2 neither.
  virtual std::int16_t Switch() const = 0;
  /// The interval as it is typed: minutes.
  virtual std::string Interval() const = 0;
};

/// The window for one operation on a profile's message file. A change reaches the window that is
/// there at that moment, while it shows that profile and the profile has the message file that it
/// had when the operation began; otherwise it does nothing, and no window is made for it.
class ShownSettings {
 public:
  virtual ~ShownSettings() = default;
  /// Fills the list from the file. Reported under "LoadMessages".
  virtual void LoadMessages() = 0;
  /// The same, if the list has been filled since the operation began, for an operation that leaves
  /// the list alone: what was listed in its midst can have been neither the old nor the new.
  virtual void LoadMessagesAgain() = 0;
  /// Error 380 for a value that the switch does not accept, whatever the window shows.
  virtual void SetSwitch(std::int16_t value) = 0;
  virtual void SetInterval(const std::string& text) = 0;
};

/// The one settings window.
class SettingsView {
 public:
  virtual ~SettingsView() = default;
  /// The window, or null while there is none.
  virtual std::shared_ptr<BroadcastSettings> Loaded() const = 0;
  /// For an operation that begins now.
  virtual std::unique_ptr<ShownSettings> Showing(std::int32_t profile) = 0;
};

}  // namespace rotacasts
