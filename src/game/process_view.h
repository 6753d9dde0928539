// A profile's game server as the readers see it: the memory component, the process, the addresses.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>

#include "base/arithmetic.h"
#include "services/host_services.h"
#include "services/profile_tables.h"

namespace rotacasts {

/// Reads one profile's game server. Made for one info text and used at once: it takes the memory
/// map as it is then. Every read goes to the memory component; every failure is a run-time error.
class ProcessView {
 public:
  /// Error 9 for a profile index beyond the tables.
  ProcessView(const MemorySource& source, ProfileTables& tables, std::int32_t profileIndex)
      : source_(source),
        processHandle_(tables.Profiles(profileIndex).ProcessHandle),
        map_(std::as_const(tables).MemoryMaps(profileIndex)) {}

  std::int32_t Address(std::string_view location) const { return map_.Address(location); }
  std::int32_t ReadLong(Checked address) const {
    return source_.Memory().ReadLong(processHandle_, address.Value());
  }
  std::int32_t ReadLong(std::string_view location) const { return ReadLong(Address(location)); }
  std::string ReadStr(Checked address) const {
    return source_.Memory().ReadStr(processHandle_, address.Value());
  }

 private:
  const MemorySource& source_;
  std::int32_t& processHandle_;  // the record's own field, as the component contract has it
  const MemoryMap map_;
};

}  // namespace rotacasts
