// The settings window for one operation on a profile, for as long as it shows that profile.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "services/profile_tables.h"
#include "ui/settings_window.h"

namespace rotacasts {

/// A component call and a box run a message loop, in which the host can show another profile, stop
/// the profile, and unload the window and show it again. So an operation reaches the window only
/// through this, which gives out the one that is loaded now, while it shows the operation's profile
/// and that has the message file which it had at the beginning (a stopped profile has none).
class ShownProfile {
 public:
  /// The operation begins now.
  ShownProfile(const SettingsWindow& settings, const ProfileTables& tables, std::int32_t profile);

  std::int32_t Profile() const { return profile_; }
  /// Calls `act(window)`, or does nothing.
  template <class Act>
  void If(Act&& act) const {
    if (const std::shared_ptr<frmRT> window = Current()) act(*window);
  }
  /// Throws Overtaken, which ends the handler. The window lives until this is asked again.
  frmRT& Window() const;
  /// Whether the list has been filled, or the window made, since the operation began.
  bool WasFilled() const;

 private:
  /// The window, or null.
  std::shared_ptr<frmRT> Current() const;
  /// Empty for a profile that is not set up.
  std::string PathOfFile() const;

  const SettingsWindow& settings_;
  const ProfileTables& tables_;
  const std::int32_t profile_;
  const std::string file_;
  mutable std::shared_ptr<frmRT> last_;
  const std::shared_ptr<frmRT> first_;
  const int fillings_;
};

}  // namespace rotacasts
