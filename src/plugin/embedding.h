// Showing, hiding and unloading the settings window inside the host's window.
#pragma once

#include <cstdint>

#include "plugin/profiles.h"

namespace rotacasts {

/// The length of a timer period, in milliseconds.
inline constexpr std::int32_t kTimerInterval = 60000;

class Embedding {
 public:
  Embedding(HostServices& services, ProfileTables& tables, ErrorHandler& errors, Profiles& profiles,
            SettingsWindow& window)
      : services_(services),
        tables_(tables),
        errors_(errors),
        profiles_(profiles),
        window_(window) {}

  /// Shows the profile's settings inside the host's window and starts the profile. Index 0 is
  /// ignored. While a message box is open the window cannot be shown; the call then ends silently
  /// without starting the profile. Other errors are reported under "LoadInterface".
  void LoadInterface(std::int32_t Index, forms::WindowHandle PHWND, const ProfileData& PDAT);
  /// Makes the window invisible; timers go on. Raises what fails.
  void HideInterface();
  /// Drops every profile's run-time state and the window. Reported under "UnLoadInterface".
  void UnLoadInterface();

 private:
  class Load;
  void StartTimer(std::int32_t index, frmRT& window);

  HostServices& services_;
  ProfileTables& tables_;
  ErrorHandler& errors_;
  Profiles& profiles_;
  SettingsWindow& window_;
};

}  // namespace rotacasts
