#include "services/memory_map.h"

#include <algorithm>
#include <string>

#include "base/runtime_error.h"

namespace rotacasts {

const Location* MemoryMap::Find(std::string_view name) const {
  const auto found = std::find_if(locations_.begin(), locations_.end(),
                                  [&](const Location& row) { return row.name == name; });
  return found != locations_.end() ? &*found : nullptr;
}

std::int32_t MemoryMap::Address(std::string_view name) const {
  const Location* found = Find(name);
  if (found == nullptr) {
    throw RuntimeError(ErrorNumber::InvalidProcedureCall,
                       "the game build has no memory location " + std::string(name));
  }
  return found->address;
}

}  // namespace rotacasts
