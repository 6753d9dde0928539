#include "host/components/host_file_system.h"

#include <filesystem>

#include "host/machine/native_files.h"

namespace rotacasts::host {

namespace fs = std::filesystem;

bool HostFileSystem::FileExists(const std::string& path) {
  std::error_code ignored;
  return fs::exists(NativePath(path), ignored) && !fs::is_directory(NativePath(path), ignored);
}

bool HostFileSystem::FolderExists(const std::string& path) {
  std::error_code ignored;
  return fs::is_directory(NativePath(path), ignored);
}

void HostFileSystem::CreateFolder(const std::string& path) {
  const fs::path folder = NativePath(path);
  std::error_code problem;
  if (fs::create_directory(folder, problem)) return;
  if (!problem) throw RuntimeError(ErrorNumber::FileAlreadyExists, folder.string());
  const auto number = problem == std::errc::no_such_file_or_directory ? ErrorNumber::PathNotFound
                      : problem == std::errc::file_exists ? ErrorNumber::FileAlreadyExists
                                                          : ErrorNumber::PermissionDenied;
  throw RuntimeError(number, folder.string() + " (" + problem.message() + ")");
}

void HostFileSystem::CreateTextFile(const std::string& path) {
  ReplaceFile(path, "");
}

}  // namespace rotacasts::host
