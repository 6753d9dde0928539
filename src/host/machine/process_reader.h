// Reading another process's memory. One implementation per platform.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace rotacasts::host {

/// A process by the machine's number for it.
using ProcessId = std::int64_t;

/// What came of a read.
enum class ReadOutcome { Complete, ProcessGone, NotAllowed, NotMapped };

/// Reads exactly `size` bytes at `address`.
ReadOutcome ReadProcess(ProcessId process, std::uint32_t address, void* buffer, std::size_t size);

/// Reads up to `size` bytes at `address`, ending early where the mapped memory ends; `count` is
/// what was read. NotMapped when not even the first byte is there.
ReadOutcome ReadProcessUpTo(ProcessId process, std::uint32_t address, void* buffer,
                            std::size_t size, std::size_t& count);

/// The running processes whose program file has this name: no folder, letter case as the machine
/// compares names.
std::vector<ProcessId> FindProcesses(const std::string& programName);

}  // namespace rotacasts::host
