// Reading another process's memory. One implementation per platform.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace rotacasts::host {

/// The system's process identifier.
using ProcessId = std::int64_t;

/// The outcome of a read.
enum class ReadOutcome { Complete, ProcessGone, NotAllowed, NotMapped };

/// Reads exactly `size` bytes at `address`.
ReadOutcome ReadProcess(ProcessId process, std::uint32_t address, void* buffer, std::size_t size);

/// Reads up to `size` bytes at `address`; stops early where the mapped memory ends. `count` is the
/// number of bytes read. NotMapped if not even the first byte is mapped.
ReadOutcome ReadProcessUpTo(ProcessId process, std::uint32_t address, void* buffer,
                            std::size_t size, std::size_t& count);

/// The running processes of the program with this name (without a folder). Letter case matters if
/// it does on this system. A Windows program under Wine is found by its Windows name.
std::vector<ProcessId> FindProcesses(const std::string& programName);

/// Whether the process receives UDP at the port. Perhaps: the socket belongs to a process that
/// holds sockets for several others, as Wine's server does. NotAllowed: the process cannot be
/// inspected.
enum class HoldsPort { No, Perhaps, Yes, NotAllowed };
HoldsPort HoldsUdpPort(ProcessId process, std::uint16_t port);
/// Whether any process of this machine receives UDP at the port.
bool ReceivesUdp(std::uint16_t port);

}  // namespace rotacasts::host
