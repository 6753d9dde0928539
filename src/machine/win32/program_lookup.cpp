#include "machine/program_lookup.h"

namespace rotacasts::host {

std::string WhyNotStartable(const std::string&) {
  return {};
}

}  // namespace rotacasts::host
