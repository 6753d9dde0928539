#include "services/host_folder.h"

#include <algorithm>
#include <string_view>

#include "base/runtime_error.h"
#include "base/text.h"

namespace rotacasts {
namespace {

/// A path component that is, or that the system takes for, the folder above: dots and blanks only.
bool Climbs(std::string_view component) {
  return component.find("..") != component.npos &&
         component.find_first_not_of(". ") == component.npos;
}

bool StaysBelow(std::string_view folder) {
  if (HasControl(folder)) return false;
  while (!folder.empty()) {
    const auto end = std::min(folder.find_first_of("\\/"), folder.size());
    if (Climbs(folder.substr(0, end))) return false;
    folder.remove_prefix(std::min(end + 1, folder.size()));
  }
  return true;
}

}  // namespace

std::string HostFolder::Profile(const std::string& profile) const {
  if (!StaysBelow(profile)) {
    throw RuntimeError(ErrorNumber::PathNotFound,
                       "\"" + profile + "\" is no profile folder; give it another name");
  }
  return Profiles() + "\\" + profile;
}

}  // namespace rotacasts
