// The hidden files that stand beside a file while it is replaced, and what a later start makes of
// those that an interrupted replacement has left.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace rotacasts::host {

/// The name is ".FILE.new-DIGESTS-RANDOM". The digests of the new and the old contents tell a later
/// start what the file certainly is; a file that replaces whatever is there has none.
class BesideName {
 public:
  /// The name for a new file, up to its random part, "XXXXXX". `old` is null if there are no
  /// digests.
  static std::string Template(const std::filesystem::path& target, std::string_view bytes,
                              const std::string* old);
  /// The name for the old file while its place is empty, beside that of the new file.
  static std::string ForOld(const std::string& nameForNew);
};

/// Gives a file that stands beside `target` a visible name, "FILE.kept-DATE-TIME" with the time
/// when it was changed, which no other file has. Returns its new path, or the old one if that
/// fails.
std::string KeepVisibly(const std::string& beside, const std::filesystem::path& target) noexcept;

/// Moves a file to a name that must be free. Returns false, without a change, if it is not. Errors:
/// as RaiseFileError.
bool MoveToFreeName(const std::string& from, const std::filesystem::path& to);

}  // namespace rotacasts::host
