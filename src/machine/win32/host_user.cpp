#include "machine/host_user.h"

namespace rotacasts::host {

struct HostUser::User {};

HostUser::HostUser(const std::string&) {}
HostUser::~HostUser() = default;

bool HostUser::MayUse(const std::string&, bool) const {
  return true;
}

}  // namespace rotacasts::host
