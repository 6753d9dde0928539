#include "host/kept_files.h"

#include <algorithm>
#include <filesystem>

#include "files/native_files.h"

namespace rotacasts::host {

std::vector<std::string> TellOfKeptFiles(const std::string& folder) {
  std::vector<std::string> lines;
  std::error_code problem;  // of a folder that is missing or cannot be read
  for (const auto& entry : std::filesystem::directory_iterator(NativePath(folder), problem)) {
    const std::string name = entry.path().filename().string();
    const std::size_t mark = name.find(kKeptMark);
    if (mark == name.npos) continue;
    lines.push_back(entry.path().string() + ": another program saved this while the host changed " +
                    name.substr(0, mark) + "; take over what is missing there, then remove it");
  }
  std::sort(lines.begin(), lines.end());
  return lines;
}

}  // namespace rotacasts::host
