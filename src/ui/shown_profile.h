// The settings window for one operation on a profile, for as long as it shows that profile.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "services/profile_tables.h"
#include "ui/settings_window.h"

namespace rotacasts {

/// A component call and a box run a message loop, in which the host can show another profile, stop
/// the profile, and unload the window and make it again. So an operation reaches the window only
/// through this, which gives it out only while it shows the operation's profile and that has the
/// message file which it had at the beginning (a stopped profile has none).
class ShownProfile {
 public:
  /// The operation begins now.
  ShownProfile(const SettingsWindow& settings, const ProfileTables& tables, std::int32_t profile);

  std::int32_t Profile() const { return profile_; }
  /// The window that there was at the beginning, with what the user typed and selected in it.
  /// Throws Overtaken, which ends the handler, once that is gone.
  frmRT& Window() const;
  /// The window that there is now, which is to show what became of the operation; or null.
  std::shared_ptr<frmRT> Now() const;
  /// Calls `act(window)` with the window that there is now, or does nothing.
  template <class Act>
  void If(Act&& act) const {
    if (const std::shared_ptr<frmRT> now = Now()) act(*now);
  }
  /// Whether the list has been filled, or the window made, since the operation began.
  bool WasFilled() const;

 private:
  /// Empty for a profile that is not set up.
  std::string PathOfFile() const;

  const SettingsWindow& settings_;
  const ProfileTables& tables_;
  const std::int32_t profile_;
  const std::string file_;
  const std::shared_ptr<frmRT> window_;
  const int fillings_;
};

}  // namespace rotacasts
