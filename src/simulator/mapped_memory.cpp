#include "simulator/mapped_memory.h"

#include <cstring>

namespace rotacasts::simulator {
namespace {

char* Pointer(std::int32_t address) {
  return reinterpret_cast<char*>(static_cast<std::uintptr_t>(static_cast<std::uint32_t>(address)));
}

}  // namespace

void MappedMemory::WriteLong(std::int32_t address, std::int32_t value) {
  std::memcpy(Pointer(address), &value, sizeof value);
}

void MappedMemory::WriteText(std::int32_t address, std::string_view bytes) {
  char* const at = Pointer(address);
  at[bytes.size()] = '\0';
  std::memcpy(at, bytes.data(), bytes.size());
}

}  // namespace rotacasts::simulator
