#include "files/file_exchange.h"

#include <array>
#include <cerrno>
#include <cstdio>

#include "files/linux/beside_file.h"
#include "files/linux/descriptor.h"
#include "files/native_files.h"

namespace rotacasts::host {

bool CanExchangeFiles(const std::string& folder) noexcept try {
  std::array<std::string, 2> names;
  bool areMade = true;
  for (std::string& name : names) {
    name = BesideName::Template(NativePath(folder) / "exchange", {}, nullptr);
    areMade = Descriptor(::mkostemp(name.data(), O_CLOEXEC)).IsOpen() && areMade;
  }
  const bool isRefused = areMade && ::renameat2(AT_FDCWD, names[0].c_str(), AT_FDCWD,
                                                names[1].c_str(), RENAME_EXCHANGE) != 0;
  const bool canExchange = !isRefused || (errno != EINVAL && errno != ENOSYS);
  for (const std::string& name : names) ::unlink(name.c_str());
  return canExchange;
} catch (...) {  // out of memory
  return true;
}

}  // namespace rotacasts::host
