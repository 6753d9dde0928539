#include "simulator/mapped_memory.h"

#include <sys/mman.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>

#include "base/runtime_error.h"

namespace rotacasts::simulator {
namespace {

void Map(std::uintptr_t begin, std::size_t size) {
  void* const wanted = reinterpret_cast<void*>(begin);
  void* const mapped =
      ::mmap(wanted, size, PROT_READ | PROT_WRITE,
             MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE | MAP_FIXED_NOREPLACE, -1, 0);
  if (mapped == wanted) return;
  char text[80];
  std::snprintf(text, sizeof text, "cannot map memory at 0x%08zX (%s)",
                static_cast<std::size_t>(begin), std::strerror(errno));
  throw RuntimeError(ErrorNumber::OutOfMemory, text);
}

}  // namespace

void MappedMemory::Reserve(std::int32_t address, std::uint32_t size) {
  static const auto kPage = static_cast<std::uintptr_t>(::sysconf(_SC_PAGESIZE));
  const std::uintptr_t first = static_cast<std::uint32_t>(address) / kPage * kPage;
  const std::uintptr_t end =
      static_cast<std::uint32_t>(address) + static_cast<std::uintptr_t>(size);
  // Page by page, because fixed addresses share pages; adjacent new pages are mapped together.
  std::uintptr_t begin = 0;
  std::size_t length = 0;
  for (std::uintptr_t page = first; page < end; page += kPage) {
    if (!pages_.insert(page).second) continue;
    if (length > 0 && begin + length != page) {
      Map(begin, length);
      length = 0;
    }
    if (length == 0) begin = page;
    length += kPage;
  }
  if (length > 0) Map(begin, length);
}

}  // namespace rotacasts::simulator
