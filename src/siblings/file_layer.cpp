#include "siblings/file_layer.h"

#include "base/runtime_error.h"

namespace rotacasts::host {

namespace fs = std::filesystem;

FileBytes MachineFiles::Read(const std::string& path) {
  return ReadWholeFile(path);
}

Replaced MachineFiles::Replace(const std::string& path, std::string_view bytes,
                               const FileBytes* seen) {
  return ReplaceFile(path, bytes, seen);
}

void MachineFiles::Append(const std::string& path, const std::string& line) {
  AppendLine(path, line);
}

bool MachineFiles::FileExists(const std::string& path) {
  std::error_code ignored;
  return fs::exists(NativePath(path), ignored) && !fs::is_directory(NativePath(path), ignored);
}

bool MachineFiles::FolderExists(const std::string& path) {
  std::error_code ignored;
  return fs::is_directory(NativePath(path), ignored);
}

void MachineFiles::CreateFolder(const std::string& path) {
  const fs::path folder = NativePath(path);
  std::error_code problem;
  if (fs::create_directory(folder, problem)) return ShareAsParent(path);
  if (!problem) throw RuntimeError(ErrorNumber::FileAlreadyExists, folder.string());
  if (problem == std::errc::file_exists) {
    throw RuntimeError(ErrorNumber::FileAlreadyExists,
                       folder.string() + " is a file; rename it, or remove it");
  }
  const auto number = problem == std::errc::no_such_file_or_directory ? ErrorNumber::PathNotFound
                      : problem == std::errc::no_space_on_device      ? ErrorNumber::DiskFull
                                                                 : ErrorNumber::PermissionDenied;
  throw RuntimeError(number, folder.string() + " (" + problem.message() + ")");
}

}  // namespace rotacasts::host
