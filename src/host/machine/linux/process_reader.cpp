#include "host/machine/process_reader.h"

#include <sys/uio.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <filesystem>
#include <span>
#include <utility>

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

/// Reads the remote pieces, one behind another. A number too large to be a process's stands for
/// none: cut to size, it would stand for another process.
ssize_t ReadPieces(ProcessId process, const iovec& local, std::span<const iovec> remote) {
  if (!std::in_range<pid_t>(process)) {
    errno = ESRCH;
    return -1;
  }
  return ::process_vm_readv(static_cast<pid_t>(process), &local, 1, remote.data(), remote.size(),
                            0);
}

/// The name of the program file that a process runs; empty when it cannot be told.
std::string ProgramName(const fs::path& processFolder) {
  std::error_code problem;
  return fs::read_symlink(processFolder / "exe", problem).filename().string();
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
  // A transfer is cut between the remote pieces, not inside one: a piece ends where a page ends.
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
  std::error_code problem;
  for (const fs::directory_entry& entry : fs::directory_iterator("/proc", problem)) {
    const std::string name = entry.path().filename().string();
    ProcessId process = 0;
    const auto [end, error] = std::from_chars(name.data(), name.data() + name.size(), process);
    if (error != std::errc() || end != name.data() + name.size()) continue;
    if (ProgramName(entry.path()) == programName) found.push_back(process);
  }
  return found;
}

}  // namespace rotacasts::host
