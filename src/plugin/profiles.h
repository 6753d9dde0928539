// Setting up and stopping profiles.
#pragma once

#include <cstdint>

#include "game/game_reader.h"
#include "services/guard.h"
#include "services/host_services.h"
#include "services/profile_data.h"
#include "services/profile_tables.h"
#include "ui/settings_window.h"

namespace rotacasts {

/// Takes a profile's data into its record, element after element; what is filled before an error
/// stays filled.
void FillRecord(ProfileRecord& record, const ProfileData& data);

class Profiles {
 public:
  Profiles(HostServices& services, ProfileTables& tables, ErrorHandler& errors, GameReader& game,
           SettingsWindow& window)
      : services_(services), tables_(tables), errors_(errors), game_(game), window_(window) {}

  /// Stores a profile's data: grows the tables to `Index`, fills the record, builds the memory map
  /// and the message file's path. Position and tick count of a running profile stay. Reported under
  /// "SetProfileData"; fields filled before an error keep their new values, and a profile folder
  /// that is refused leaves the path empty.
  void SetProfileData(std::int32_t Index, const ProfileData& PDAT);

  /// Stops a profile: no memory map, no timer, no path, counters 0; whatever of that does not exist
  /// is passed over. Reported under "DisableProfile".
  void DisableProfile(std::int32_t Index);

  /// Drops every profile's memory map, path and counters.
  void ResetRunTimeTables();

 private:
  void GrowTables(std::int32_t index);

  HostServices& services_;
  ProfileTables& tables_;
  ErrorHandler& errors_;
  GameReader& game_;
  SettingsWindow& window_;
};

}  // namespace rotacasts
