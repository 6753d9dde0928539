#include "simulator/mapped_memory.h"

#include <cstdio>

#include "base/runtime_error.h"
#include "com/windows_api.h"

namespace rotacasts::simulator {
namespace {

// The program is linked to the address of a game's program. This array, which is part of its image,
// covers every fixed address of every build.
constexpr std::uintptr_t kImageBase = 0x00400000;
constexpr std::uintptr_t kLastFixed = 0x02A2C000;
char image[kLastFixed - kImageBase];

bool LiesInImage(std::uintptr_t begin, std::uintptr_t end) {
  const auto from = reinterpret_cast<std::uintptr_t>(image);
  return begin >= from && end <= from + sizeof image;
}

void Map(std::uintptr_t begin, std::size_t size) {
  if (::VirtualAlloc(reinterpret_cast<void*>(begin), size, MEM_RESERVE | MEM_COMMIT,
                     PAGE_READWRITE) != nullptr) {
    return;
  }
  char text[80];
  std::snprintf(text, sizeof text, "cannot map memory at 0x%08X (error %lu)",
                static_cast<unsigned>(begin), ::GetLastError());
  throw RuntimeError(ErrorNumber::OutOfMemory, text);
}

}  // namespace

void MappedMemory::Reserve(std::int32_t address, std::uint32_t size) {
  const auto begin = static_cast<std::uintptr_t>(static_cast<std::uint32_t>(address));
  if (!LiesInImage(begin, begin + size)) Map(begin, size);
}

}  // namespace rotacasts::simulator
