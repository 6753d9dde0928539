// A profile's game server, as the readers see it: memory component, process and addresses.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>

#include "base/arithmetic.h"
#include "services/host_services.h"
#include "services/profile_tables.h"

namespace rotacasts {

/// Reads one profile's game server through the memory component. Make one for each info text: it
/// copies the memory map. Errors: those of the component, and 5 for an unknown location.
class ProcessView {
 public:
  /// Errors: 9 if the profile index is beyond the tables. `source` and `tables` must outlive it.
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
  std::int32_t& processHandle_;  // the record's field, because it is passed by reference
  const MemoryMap map_;
};

}  // namespace rotacasts
