// Limits the size of the error log.
#pragma once

#include <cstddef>
#include <string>

namespace rotacasts::host {

/// The size at which a new error log is started. With the old one, the log takes about twice as
/// much.
inline constexpr std::size_t kLongestErrorLog = std::size_t{1} << 20;  // bytes

/// Starts a new log if the old one has grown long: renames it to "errors.old.log", replacing an
/// earlier one. If that fails, the log keeps growing.
void RotateIfLong(const std::string& path) noexcept;

}  // namespace rotacasts::host
