// What the store and the tick see of the settings window, in their own words.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

namespace rotacasts {

/// The list of messages that the administrator has before them.
class ShownMessages {
 public:
  virtual ~ShownMessages() = default;
  virtual void Clear() = 0;
  /// Adds a row at the end: the text that it shows, and the key of its message in the file.
  virtual void Append(std::string text, std::int32_t key) = 0;
  virtual void Hide() = 0;
  virtual void Show() = 0;
};

/// The one settings window. Touching it makes the window, hidden, if there is none.
class SettingsView {
 public:
  virtual ~SettingsView() = default;
  /// The list. It can be touched while the result lives, without effect once its window is gone.
  virtual std::shared_ptr<ShownMessages> Messages() = 0;

  /// Whether there is a window.
  virtual bool IsLoaded() const = 0;
  /// The enable switch: 0 off, 1 on, 2 neither.
  virtual std::int16_t Switch() = 0;
  /// Error 380 for a value that the switch does not accept.
  virtual void SetSwitch(std::int16_t value) = 0;
  /// Raises what SetSwitch would for the value; touches no window.
  virtual void RequireSwitchValue(std::int16_t value) const = 0;

  /// The interval as it is typed: minutes.
  virtual std::string Interval() = 0;
  virtual void SetInterval(const std::string& text) = 0;
};

}  // namespace rotacasts
