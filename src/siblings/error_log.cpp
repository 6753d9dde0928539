#include "siblings/error_log.h"

#include <filesystem>

#include "files/native_files.h"

namespace rotacasts::host {

void RotateIfLong(const std::string& path) noexcept try {
  std::error_code problem;
  const std::filesystem::path log = NativePath(path);
  const auto size = std::filesystem::file_size(log, problem);
  if (problem || size < kLongestErrorLog) return;
  std::filesystem::path old = log;
  std::filesystem::rename(log, old.replace_filename("errors.old.log"), problem);
} catch (...) {  // out of memory
}

}  // namespace rotacasts::host
