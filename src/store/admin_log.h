// The administration log: one line for each change that a remote administrator makes.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "services/host_services.h"
#include "services/profile_data.h"

namespace rotacasts {

/// A change as the log words it: what was done, and what the value after it is.
namespace admin_action {
inline constexpr std::string_view kAdd = "Add Rotacast (Message: ";
inline constexpr std::string_view kEnable = "Enable Rotacasts (New Value: ";
inline constexpr std::string_view kInterval = "Change Rotacasts Interval (New Interval: ";
inline constexpr std::string_view kMoveDown = "Move Rotacasts Down (Message: ";
inline constexpr std::string_view kMoveUp = "Move Rotacasts Up (Message: ";
inline constexpr std::string_view kDelete = "Delete Rotacasts (Message: ";
inline constexpr std::string_view kChange = "Change Rotacasts (Message: ";
inline constexpr std::string_view kPlace = "Move Rotacasts (Message: ";
}  // namespace admin_action

/// One text file a day, in the profile's `adminlogs` folder or in the host's. Lines are only ever
/// appended; folders and files are made on first use.
class AdminLog {
 public:
  explicit AdminLog(HostServices& services) : services_(services) {}

  /// Writes "[hh:mm:ss][Rotacasts] " + action + value + ") from " + sender. `PDAT` names the
  /// profile's folder, the sender and whether the host's log is meant. Control characters but the
  /// tab, line breaks among them, become blanks: one change, one line. Raises what fails.
  void Write(const ProfileData& PDAT, std::string_view action, const std::string& value);

  /// The day's file in an `adminlogs` folder.
  static std::string FileIn(const std::string& folder, const LocalTime& day);
  /// The last `most` lines of a file's bytes, the latest first.
  static std::vector<std::string> LatestLines(std::string_view bytes, std::size_t most);

 private:
  HostServices& services_;
};

}  // namespace rotacasts
