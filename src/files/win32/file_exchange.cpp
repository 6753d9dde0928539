#include "files/file_exchange.h"

namespace rotacasts::host {

bool CanExchangeFiles(const std::string&) noexcept {
  return true;
}

}  // namespace rotacasts::host
