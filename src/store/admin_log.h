// The administration log: one line for each change that a remote administrator makes.
#pragma once

#include <string>

#include "services/host_services.h"

namespace rotacasts {

/// One text file a day, in the profile's `adminlogs` folder or in the host's. Lines are only ever
/// appended; folders and files are made on first use.
class AdminLog {
 public:
  explicit AdminLog(HostServices& services) : services_(services) {}

  /// Writes "[hh:mm:ss" + action + value + ") from " + sender. `PDAT` names the profile's folder,
  /// the sender and whether the host's log is meant. Control characters but the tab, line
  /// breaks among them, become blanks: one change, one line. Raises what fails.
  void Write(const HostValue& PDAT, const std::string& action, const std::string& value);

 private:
  HostServices& services_;
};

}  // namespace rotacasts
