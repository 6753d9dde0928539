// The settings window for one operation on a profile, for as long as it shows that profile.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "services/profile_tables.h"
#include "ui/frm_rt.h"

namespace rotacasts {

/// A component call and a box run a message loop, in which the host can show another profile, unload
/// the window or stop the profile. So an operation reaches the window only through this, which gives
/// it out only while it is loaded, shows the profile that it showed at the beginning, and the
/// profile's message file is still the same (a stopped profile has none).
class ShownProfile {
 public:
  /// The operation begins now. `window` may be null.
  ShownProfile(std::shared_ptr<frmRT> window, const ProfileTables& tables, std::int32_t profile);

  std::int32_t Profile() const { return profile_; }
  /// Calls `act(window)`, or does nothing.
  template <class Act>
  void If(Act&& act) const {
    if (IsCurrent()) act(*window_);
  }
  /// Throws Overtaken, which ends the handler.
  frmRT& Window() const;

 private:
  bool IsCurrent() const;
  /// Empty for a profile that is not set up.
  std::string PathOfFile() const;

  const std::shared_ptr<frmRT> window_;
  const ProfileTables& tables_;
  const std::int32_t profile_;
  const std::string file_;
};

}  // namespace rotacasts
