// Files in memory, for tests that need thousands of host folders per second.
#pragma once

#include <map>
#include <set>

#include "base/runtime_error.h"
#include "siblings/file_layer.h"

namespace rotacasts::testing {

/// Files that a test adds to `files` need no folder.
class MemoryFiles final : public host::FileLayer {
 public:
  std::map<std::string, std::string> files;  // by path, in the host suite's form
  std::set<std::string> folders;

  host::FileBytes Read(const std::string& path) override {
    RefuseEmpty(path);
    const auto found = files.find(path);
    return found != files.end() ? host::FileBytes(found->second) : std::nullopt;
  }
  host::Replaced Replace(const std::string& path, std::string_view bytes,
                         const host::FileBytes* seen) override {
    RefuseEmpty(path);
    if (seen != nullptr && Read(path) != *seen) return {false, {}};
    files[path] = bytes;
    return {};
  }
  void Append(const std::string& path, const std::string& line) override {
    const auto found = files.find(path);
    if (found == files.end()) throw RuntimeError(ErrorNumber::FileNotFound, path);
    std::string& bytes = found->second;
    if (!bytes.empty() && bytes.back() != '\n' && bytes.back() != '\r') bytes += "\r\n";
    bytes += line + "\r\n";
  }
  bool FileExists(const std::string& path) override { return files.count(path) > 0; }
  bool FolderExists(const std::string& path) override { return folders.count(path) > 0; }
  void CreateFolder(const std::string& path) override { folders.insert(path); }

 private:
  static void RefuseEmpty(const std::string& path) {
    if (path.empty()) throw RuntimeError(ErrorNumber::PathNotFound, "the path is empty");
  }
};

}  // namespace rotacasts::testing
