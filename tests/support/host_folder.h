// A host folder for a test, temporary or one that stays.
#pragma once

#include <filesystem>
#include <fstream>
#include <random>
#include <sstream>
#include <string>

namespace rotacasts {
inline namespace testing {

class TestFolder {
 public:
  TestFolder() {
    std::random_device random;
    path_ = std::filesystem::temp_directory_path() / ("rotacasts-" + std::to_string(random()));
    std::filesystem::create_directory(path_);
  }
  explicit TestFolder(std::filesystem::path toStay) : path_(std::move(toStay)), stays_(true) {}
  ~TestFolder() {
    if (!stays_) std::filesystem::remove_all(path_);
  }

  std::string Path() const { return path_.string(); }
  std::string File(const std::string& name) const {
    return (path_ / name).make_preferred().string();
  }
  void Write(const std::string& name, const std::string& bytes) const {
    std::filesystem::create_directories((path_ / name).parent_path());
    std::ofstream(path_ / name, std::ios::binary) << bytes;
  }
  std::string Read(const std::string& name) const {
    std::ostringstream bytes;
    bytes << std::ifstream(path_ / name, std::ios::binary).rdbuf();
    return bytes.str();
  }
  /// The contents of a folder's files, one after the other; empty if there is no folder.
  std::string ReadAll(const std::string& place) const {
    std::string bytes;
    std::error_code none;
    for (const auto& file : std::filesystem::directory_iterator(path_ / place, none)) {
      bytes += Read(place + "/" + file.path().filename().string());
    }
    return bytes;
  }
  /// Writes a profile and, unless it is empty, its message file.
  void AddProfile(int index, const std::string& code, const std::string& process,
                  const std::string& target, const std::string& messageFile = {}) const {
    const std::string folder = "profiles/srv" + std::to_string(index) + "/";
    Write(folder + "profile.ini", "[Profile]\r\nIndex=" + std::to_string(index) + "\r\nGameCode=" +
                                      code + "\r\nProcess=" + process + "\r\nTarget=" + target);
    if (!messageFile.empty()) Write(folder + "settings/Rotacasts.ini", messageFile);
  }

 private:
  std::filesystem::path path_;
  const bool stays_ = false;
};

}  // namespace testing
}  // namespace rotacasts
