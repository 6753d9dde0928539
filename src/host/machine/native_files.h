// Files of the machine that the stand-alone host runs on. One implementation per platform.
//
// Paths come in the host suite's spelling, UTF-8 with backslashes, and are spelled natively here
// and nowhere else. Errors are run-time errors that name the path: 53, 70, 76 or 57 with the
// reason.
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace rotacasts::host {

/// The path as the machine spells it.
std::filesystem::path NativePath(const std::string& path);
/// The inverse: a native path in the host suite's spelling.
std::string HostPath(const std::filesystem::path& path);

/// The whole file; nothing when it does not exist.
std::optional<std::string> ReadWholeFile(const std::string& path);
/// Replaces the file by one with these bytes, or creates it, so that a reader and a crash of this
/// program see the old bytes or the new ones. A read-only file stays as it is: error 70.
void ReplaceFile(const std::string& path, std::string_view bytes);
/// Appends to an existing file. Error 53 when it does not exist.
void AppendToFile(const std::string& path, std::string_view bytes);

}  // namespace rotacasts::host
