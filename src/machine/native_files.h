// File access for the stand-alone host. One implementation per platform.
//
// Paths have the host suite's form, UTF-8 with backslashes; only this file converts them. Errors
// name the path and the reason: 53, 61, 70, 76, 75 if it is not a file (a folder, a pipe), else 57.
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace rotacasts::host {

/// The path in the system's form.
std::filesystem::path NativePath(const std::string& path);

/// The whole file; nullopt if it does not exist.
std::optional<std::string> ReadWholeFile(const std::string& path);

/// A file's bytes as they were read; nullopt if it did not exist.
using FileBytes = std::optional<std::string>;

/// Replaces the file with a new one that holds these bytes, or creates it. Readers, a kill and a
/// power failure find either the old bytes or the new ones; on return the new ones are on the disk
/// (Windows: all but the renaming). The mode stays, the owner as far as the system allows, and so
/// does a symbolic link. A new file gets the owner and the access rights of its folder, because
/// whoever serves the folder may be another user than this one.
///
/// If `seen` is given and the file holds other bytes, or another program has it open for writing,
/// leaves it alone, waits a moment and returns false. Errors: 70 if the file is read-only.
bool ReplaceFile(const std::string& path, std::string_view bytes, const FileBytes* seen = nullptr);
/// Appends `line` as a line to an existing file, completely or not at all. Errors: 53 if the file
/// does not exist.
void AppendLine(const std::string& path, const std::string& line);
/// Gives a new folder the owner and the access rights of the folder that it is in, as far as this
/// user may. On Windows it has them already.
void ShareAsParent(const std::string& folder) noexcept;
/// Removes what interrupted replacements have left in the folder. Ignores errors.
void RemoveLeftovers(const std::string& folder) noexcept;

}  // namespace rotacasts::host
