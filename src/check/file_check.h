// An INI file that is checked for what its writer probably did not intend.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "siblings/ini_text.h"

namespace rotacasts::host {

/// Reads a file once. Each warning names the file, the line and what to do.
class FileCheck {
 public:
  /// Reads the file; a missing one counts as empty. `path` has the host suite's form. If the file
  /// cannot be used, or players would read another text than intended, that is the first warning.
  /// `warnings` must outlive it.
  FileCheck(std::string path, std::vector<std::string>& warnings);

  /// Whether the host can read it; if not, there is a warning.
  bool IsReadable() const { return isReadable_; }
  /// The contents, converted to Windows-1252 if necessary.
  const IniText& Ini() const { return ini_; }

  void Warn(std::size_t line, const std::string& words);
  /// Warns about the line of a key, or the line where it should be.
  void WarnAt(std::string_view section, std::string_view key, const std::string& words) {
    Warn(ini_.LineOf(section, key), words);
  }
  /// Warns about lines that mean nothing and about repeated sections.
  void CheckLines();
  /// Warns about keys of a section that are unknown or repeated.
  void CheckKeys(std::string_view section, const std::vector<std::string>& known);

 private:
  void ReadUtf8(std::string bytes);

  const std::string path_;
  std::vector<std::string>& warnings_;
  bool isReadable_ = true;
  IniText ini_;
};

/// Converts a file that was saved as UTF-8 to Windows-1252 and keeps a copy of the original next to
/// it. Returns the path of the copy; empty if the file is not UTF-8. Errors: 5 for a character that
/// Windows-1252 lacks (the file is unchanged).
std::string ConvertFromUtf8(const std::string& path);

/// The path of the file with this name in a folder; empty if there is none. Warns about a name that
/// differs only in letter case or is not a file.
std::string FindFile(const std::string& folder, const std::string& name,
                     std::vector<std::string>& warnings);

}  // namespace rotacasts::host
