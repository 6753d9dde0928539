// Files of the machine that the stand-alone host runs on. One implementation per platform.
//
// Paths come in the host suite's spelling, UTF-8 with backslashes, and are spelled natively here
// and nowhere else. Errors are run-time errors that name the path and the reason: 53, 61, 70, 76,
// 75 for what is no file (a folder, a pipe), else 57.
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace rotacasts::host {

/// The path as the machine spells it.
std::filesystem::path NativePath(const std::string& path);

/// The whole file; nothing when it does not exist.
std::optional<std::string> ReadWholeFile(const std::string& path);

/// A file's bytes as they were read; nothing for a file that did not exist.
using FileBytes = std::optional<std::string>;

/// Puts a new file with these bytes in the file's place, or makes the file. A reader, a kill and a
/// loss of power find the old bytes or the new ones; on return the new ones are on the disk. Owner,
/// as far as the system allows, and mode stay, and a symbolic link keeps its place.
///
/// With `seen` false is returned after a moment, and the file left as it is, when it holds other
/// bytes than those or another program has it open for writing. A read-only file stays as it is:
/// error 70.
bool ReplaceFile(const std::string& path, std::string_view bytes, const FileBytes* seen = nullptr);
/// Appends a line and its end to an existing file, on a line of its own: all of it, or nothing.
/// Error 53 when the file does not exist.
void AppendLine(const std::string& path, const std::string& line);
/// Removes what a replacement that was cut short has left in the folder. No error when it cannot.
void RemoveLeftovers(const std::string& folder) noexcept;

}  // namespace rotacasts::host
