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

/// How certain it is that a process receives UDP at a port. Perhaps: the socket belongs to a
/// process that holds sockets for several others, as Wine's server does. NotAllowed: the process
/// cannot be inspected.
enum class HoldsPort { No, Perhaps, Yes, NotAllowed };

/// A UDP port at which a process receives, and the open socket that shows it.
struct ReceivedPort {
  std::uint16_t port = 0;
  HoldsPort holds = HoldsPort::No;
  ProcessId holder = 0;      // the process that has the socket open
  int file = -1;             // its number among the holder's files, where the system tells
  std::uint64_t socket = 0;  // the system's number for it, where the system tells
};

/// The ports at which the process receives, or may. If it cannot be inspected, all ports of its
/// network, as NotAllowed.
std::vector<ReceivedPort> UdpPortsOf(ProcessId process);
/// Whether the socket that UdpPortsOf found is still there. On Linux this takes one system call.
bool IsStillOpen(const ReceivedPort& port);
/// Whether any process of this machine receives UDP at the port.
bool ReceivesUdp(std::uint16_t port);

}  // namespace rotacasts::host
