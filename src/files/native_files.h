// File access for the stand-alone host. One implementation per platform.
//
// Paths have the host suite's form, UTF-8 with backslashes; only this file converts them. Errors
// name the path and the reason: 53, 61, 70, 76, 75 if it is not a file (a folder, a pipe), else 57.
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace rotacasts::host {

/// The path in the system's form.
std::filesystem::path NativePath(const std::string& path);

/// The whole file; nullopt if it does not exist.
std::optional<std::string> ReadWholeFile(const std::string& path);

/// A file's bytes as they were read; nullopt if it did not exist.
using FileBytes = std::optional<std::string>;

/// The outcome of a replacement.
struct Replaced {
  bool isDone = true;   // false: another program has changed the file, which was left alone
  std::string warning;  // what is not as it should be all the same; empty if nothing
};

/// Replaces the file with a new one that holds these bytes, or creates it. Readers, a kill and a
/// power failure find either the old bytes or the new ones; on return the new ones are on the disk
/// (Windows: all but the renaming). Where the file system cannot exchange two files, a file that is
/// replaced with `seen` has no name for a moment, and after a kill or a power failure in it
/// TidyLeftovers puts it back. The mode, the access list and the user's attributes stay, the owner
/// as far as the system allows, and so does a symbolic link; other hard links keep the old file. A
/// new file gets the owner and the access rights of its folder, because whoever serves the folder
/// may be another user than this one.
///
/// If `seen` is given and the file holds other bytes, or another program has it open for writing,
/// leaves it alone and waits a moment; what another program has saved meanwhile is never lost.
/// Raises only what was found before the file was replaced. Errors: 70 if the file is read-only,
/// or if it was changed less than half a second ago by a program that may still be writing it,
/// which this user cannot see; 75 for a link that leads to no file.
Replaced ReplaceFile(const std::string& path, std::string_view bytes,
                     const FileBytes* seen = nullptr);
/// Appends `line` as a line to an existing file, completely or not at all. Errors: 53 if the file
/// does not exist.
void AppendLine(const std::string& path, const std::string& line);
/// Gives a new folder the owner and the access rights of the folder that it is in, as far as this
/// user may. On Windows it has them already.
void ShareAsParent(const std::string& folder) noexcept;
/// In the names of files that hold what another program saved while the host replaced the file:
/// "FILE.kept-DATE-TIME".
inline constexpr std::string_view kKeptMark = ".kept-";
/// Clears what interrupted replacements have left in the folder. Removes what is certainly an old
/// or an unfinished list, and gives the rest names with kKeptMark. Returns a line for each file
/// that it has put back in its place. Ignores errors.
std::vector<std::string> TidyLeftovers(const std::string& folder) noexcept;

}  // namespace rotacasts::host
