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

/// The running processes of the program with this name, without its folder; letter case counts as
/// the machine compares names. A Windows program that runs under Wine is found by its own name.
std::vector<ProcessId> FindProcesses(const std::string& programName);

/// Whether the process receives UDP at the port. Perhaps: another process holds its sockets for it,
/// and for others too, as Wine's server does. NotAllowed: the process may not be looked into.
enum class HoldsPort { No, Perhaps, Yes, NotAllowed };
HoldsPort HoldsUdpPort(ProcessId process, std::uint16_t port);
/// Whether anybody receives UDP at the port of this machine.
bool ReceivesUdp(std::uint16_t port);

}  // namespace rotacasts::host
