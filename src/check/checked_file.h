// An INI file that is looked over for what would surprise whoever has written it.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "siblings/ini_text.h"

namespace rotacasts::host {

/// Reads a file once; each warning names the file, the line and the way out.
class CheckedFile {
 public:
  /// `path` is in the host suite's spelling. What keeps the file from being used, or makes players
  /// read another text than was meant, is the first warning; a missing file is an empty one.
  /// `warnings` lives longer.
  CheckedFile(std::string path, std::vector<std::string>& warnings);

  bool Exists() const { return exists_; }
  /// As it would be with its text converted.
  const IniText& Ini() const { return ini_; }

  void Warn(std::size_t line, const std::string& words);
  /// Where a key stands, or should.
  void WarnAt(std::string_view section, std::string_view key, const std::string& words) {
    Warn(ini_.LineOf(section, key), words);
  }
  /// Warns of lines that mean nothing, and of sections that stand there twice.
  void CheckLines();
  /// Warns of keys of a section that are none of these, or stand there twice.
  void CheckKeys(std::string_view section, const std::vector<std::string>& known);

 private:
  void TakeUtf8(std::string bytes);

  const std::string path_;
  std::vector<std::string>& warnings_;
  bool exists_ = false;
  IniText ini_;
};

/// Converts a file that was saved as UTF-8 to Windows-1252 and keeps the bytes as they were beside
/// it; that file's path, or nothing for any other file. Error 5 for a character that Windows-1252
/// does not hold; then nothing is changed.
std::string ConvertFromUtf8(const std::string& path);

/// The path of the file of this name in a folder, if there is one. Warns of one that only looks
/// like it: in other letters, or no file at all.
std::string FindFile(const std::string& folder, const std::string& name,
                     std::vector<std::string>& warnings);

}  // namespace rotacasts::host
