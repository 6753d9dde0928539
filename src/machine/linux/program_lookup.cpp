#include "machine/program_lookup.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <sstream>

namespace rotacasts::host {
namespace {

std::string WhyNotStartableAt(const std::string& path) {
  struct stat status {};
  if (::stat(path.c_str(), &status) != 0) return "is not there";
  if (!S_ISREG(status.st_mode)) return "is no file";
  return ::access(path.c_str(), X_OK) == 0 ? "" : "may not be executed";
}

}  // namespace

std::string WhyNotStartable(const std::string& program) {
  if (program.find('/') != program.npos) return WhyNotStartableAt(program);
  const char* const all = ::getenv("PATH");
  std::istringstream folders(all != nullptr ? all : "");
  for (std::string folder; std::getline(folders, folder, ':');) {
    if (WhyNotStartableAt(folder + "/" + program).empty()) return {};
  }
  return "is in no folder of PATH";
}

}  // namespace rotacasts::host
