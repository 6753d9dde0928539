#include "machine/process_reader.h"

#include <sys/stat.h>
#include <sys/uio.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <functional>
#include <map>
#include <optional>
#include <span>
#include <string_view>
#include <utility>

#include "base/text.h"

namespace rotacasts::host {
namespace {

namespace fs = std::filesystem;

ReadOutcome OutcomeOfError() {
  switch (errno) {
    case ESRCH:
      return ReadOutcome::ProcessGone;
    case EPERM:
      return ReadOutcome::NotAllowed;
    default:
      return ReadOutcome::NotMapped;
  }
}

void* RemoteAddress(std::uint32_t address) {
  return reinterpret_cast<void*>(static_cast<std::uintptr_t>(address));
}

/// Reads the remote pieces one after another. A number beyond the range of process identifiers
/// counts as no process, because a truncated one would name another process.
ssize_t ReadPieces(ProcessId process, const iovec& local, std::span<const iovec> remote) {
  if (!std::in_range<pid_t>(process)) {
    errno = ESRCH;
    return -1;
  }
  return ::process_vm_readv(static_cast<pid_t>(process), &local, 1, remote.data(), remote.size(),
                            0);
}

/// Whether the process runs the program, by its file or by the name it was started under. For a
/// Windows program the file is Wine's loader and the name a Windows path.
bool IsProgram(const fs::path& process, const std::string& name) {
  std::error_code problem;
  if (fs::read_symlink(process / "exe", problem).filename().string() == name) return true;
  std::ifstream file(process / "cmdline", std::ios::binary);
  std::string started;
  std::getline(file, started, '\0');
  const std::string_view own =
      std::string_view(started).substr(started.find_last_of("/\\") + 1);  // npos + 1 is 0
  return own.ends_with(".exe") || own.ends_with(".EXE") ? EqualsIgnoringCase(own, name)
                                                        : own == name;
}

/// The folders of all processes in /proc.
std::vector<fs::path> AllProcesses() {
  std::vector<fs::path> processes;
  std::error_code problem;
  for (const fs::directory_entry& entry : fs::directory_iterator("/proc", problem)) {
    const std::string name = entry.path().filename().string();
    if (name.find_first_not_of("0123456789") == name.npos) processes.push_back(entry.path());
  }
  return processes;
}

/// A variable of the process's initial environment; empty if it is not set.
std::string VariableOf(const fs::path& process, const std::string& name) {
  std::ifstream file(process / "environ", std::ios::binary);
  for (std::string variable; std::getline(file, variable, '\0');) {
    if (variable.starts_with(name + "=")) return variable.substr(name.size() + 1);
  }
  return {};
}

/// The name of the folder that the process's Wine server works in: Wine derives it from the device
/// and inode of the prefix. Empty for a process without Wine.
std::string WineServerFolder(const fs::path& process) {
  std::error_code problem;
  const std::string program = fs::read_symlink(process / "exe", problem).filename().string();
  if (!program.starts_with("wine")) return {};
  std::string prefix = VariableOf(process, "WINEPREFIX");
  if (prefix.empty()) prefix = VariableOf(process, "HOME") + "/.wine";
  struct stat status {};
  if (::stat(prefix.c_str(), &status) != 0) return {};
  char name[64];
  std::snprintf(name, sizeof name, "server-%llx-%llx",
                static_cast<unsigned long long>(status.st_dev),
                static_cast<unsigned long long>(status.st_ino));
  return name;
}

/// The UDP sockets of a network, by the system's number: the port of each.
using PortOfSocket = std::map<std::uint64_t, std::uint16_t>;

/// The sockets of the process's network.
PortOfSocket UdpSockets(const fs::path& process) {
  PortOfSocket ports;
  for (const char* table : {"net/udp", "net/udp6"}) {
    std::ifstream rows(process / table);
    for (std::string row; std::getline(rows, row);) {
      // The local address, "0100007F:0FA1", is the second column, and the socket the tenth.
      unsigned port = 0;
      unsigned long long socket = 0;
      constexpr const char* kColumns = "%*s %*[0-9A-F]:%4x %*s %*s %*s %*s %*s %*s %*s %llu";
      if (std::sscanf(row.c_str(), kColumns, &port, &socket) == 2) {
        ports[socket] = static_cast<std::uint16_t>(port);
      }
    }
  }
  return ports;
}

/// The number of an open socket; nullopt for any other file. `error` is 0 unless it cannot be read.
std::optional<std::uint64_t> SocketAt(const char* file, int& error) {
  constexpr std::string_view kKind = "socket:[";
  char target[64];
  const ssize_t size = ::readlink(file, target, sizeof target);
  error = size < 0 ? errno : 0;
  if (size < 0) return std::nullopt;
  const std::string_view text(target, static_cast<std::size_t>(size));
  if (!text.starts_with(kKind)) return std::nullopt;
  std::uint64_t socket = 0;
  std::from_chars(text.data() + kKind.size(), text.data() + text.size(), socket);
  return socket;
}

/// Which of the sockets the process has open. False if it cannot be inspected.
bool FindOpen(const fs::path& process, const PortOfSocket& sockets,
              const std::function<void(int file, std::uint64_t socket)>& onOpen) {
  std::error_code problem;
  fs::directory_iterator open(process / "fd", problem);
  for (const fs::directory_iterator end; !problem && open != end; open.increment(problem)) {
    int error = 0;
    const auto socket = SocketAt(open->path().c_str(), error);
    if (error == EACCES) return false;
    if (!socket || !sockets.contains(*socket)) continue;
    onOpen(std::stoi(open->path().filename().string()), *socket);
  }
  return problem != std::errc::permission_denied;
}

}  // namespace

ReadOutcome ReadProcess(ProcessId process, std::uint32_t address, void* buffer, std::size_t size) {
  const iovec local{buffer, size};
  const iovec remote{RemoteAddress(address), size};
  const ssize_t count = ReadPieces(process, local, {&remote, 1});
  if (count == static_cast<ssize_t>(size)) return ReadOutcome::Complete;
  return count < 0 ? OutcomeOfError() : ReadOutcome::NotMapped;
}

ReadOutcome ReadProcessUpTo(ProcessId process, std::uint32_t address, void* buffer,
                            std::size_t size, std::size_t& count) {
  // A transfer may stop between the remote pieces but not inside one, so a piece ends where a page
  // ends.
  static const auto kPage = static_cast<std::size_t>(::sysconf(_SC_PAGESIZE));
  const std::size_t toPageEnd = kPage - address % kPage;
  const std::size_t first = std::min(size, toPageEnd);
  const iovec local{buffer, size};
  const iovec remote[] = {
      {RemoteAddress(address), first},
      {RemoteAddress(address + static_cast<std::uint32_t>(first)), size - first}};
  const ssize_t got = ReadPieces(process, local, {remote, first < size ? 2U : 1U});
  count = got > 0 ? static_cast<std::size_t>(got) : 0;
  if (got < 0) return OutcomeOfError();
  return got == 0 && size > 0 ? ReadOutcome::NotMapped : ReadOutcome::Complete;
}

std::vector<ProcessId> FindProcesses(const std::string& programName) {
  std::vector<ProcessId> found;
  for (const fs::path& process : AllProcesses()) {
    if (IsProgram(process, programName)) found.push_back(std::stoll(process.filename().string()));
  }
  return found;
}

std::vector<ReceivedPort> UdpPortsOf(ProcessId process) {
  const fs::path folder = fs::path("/proc") / std::to_string(process);
  PortOfSocket sockets = UdpSockets(folder);
  std::vector<ReceivedPort> ports;
  const auto add = [&](HoldsPort holds, ProcessId holder, int file, std::uint64_t socket) {
    ports.push_back({sockets.at(socket), holds, holder, file, socket});
  };
  const bool isAllowed = FindOpen(folder, sockets, [&](int file, std::uint64_t socket) {
    add(HoldsPort::Yes, process, file, socket);
  });
  if (!isAllowed) {
    for (const auto& [socket, port] : sockets) add(HoldsPort::NotAllowed, process, -1, socket);
    return ports;
  }
  const std::string prefix = WineServerFolder(folder);
  if (prefix.empty()) return ports;
  for (const fs::path& other : AllProcesses()) {
    std::error_code problem;
    if (fs::read_symlink(other / "cwd", problem).filename() != prefix) continue;
    const ProcessId holder = std::stoll(other.filename().string());
    FindOpen(other, sockets, [&](int file, std::uint64_t socket) {
      add(HoldsPort::Perhaps, holder, file, socket);
    });
  }
  return ports;
}

bool IsStillOpen(const ReceivedPort& port) {
  char file[64];
  std::snprintf(file, sizeof file, "/proc/%lld/fd/%d", static_cast<long long>(port.holder),
                port.file);
  int error = 0;
  return SocketAt(file, error) == port.socket;
}

bool ReceivesUdp(std::uint16_t port) {
  const PortOfSocket sockets = UdpSockets("/proc/self");
  return std::ranges::any_of(sockets, [port](const auto& entry) { return entry.second == port; });
}

}  // namespace rotacasts::host
