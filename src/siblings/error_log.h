// The error log's size.
#pragma once

#include <cstddef>
#include <string>

namespace rotacasts::host {

/// The error log takes about twice this much of the disk at most, with the one before it.
inline constexpr std::size_t kLongestErrorLog = std::size_t{1} << 20;  // bytes

/// Starts a new log once the old one has grown long: that becomes "errors.old.log" beside it, in
/// place of what was there. A log that cannot be moved goes on growing.
void BeginAnewIfLong(const std::string& path) noexcept;

}  // namespace rotacasts::host
