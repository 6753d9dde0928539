#include "machine/process_reader.h"

#include <algorithm>
#include <cwchar>
#include <utility>
#include <vector>

// clang-format off
#include "machine/win32/sockets.h"
#include "com/unique_handle.h"
#include "com/com_support.h"
#include <iphlpapi.h>
#include <tlhelp32.h>
// clang-format on

namespace rotacasts::host {
namespace {

constexpr std::size_t kPage = 4096;
constexpr DWORD kUnknown = 0;  // the owner of a port where the system does not tell, as under Wine

/// Opens a process. A number beyond the range of process identifiers counts as no process, because
/// a truncated one would name another process.
HANDLE Open(ProcessId process) {
  if (!std::in_range<DWORD>(process)) {
    ::SetLastError(ERROR_INVALID_PARAMETER);
    return nullptr;
  }
  return ::OpenProcess(PROCESS_VM_READ | PROCESS_QUERY_INFORMATION | SYNCHRONIZE, FALSE,
                       static_cast<DWORD>(process));
}

/// A process opened for reading.
class OpenedProcess {
 public:
  explicit OpenedProcess(ProcessId process) : handle_(Open(process)) {}

  /// Why the process could not be opened; Complete if it was.
  ReadOutcome Outcome() const {
    if (handle_) return ReadOutcome::Complete;
    return ::GetLastError() == ERROR_ACCESS_DENIED ? ReadOutcome::NotAllowed
                                                   : ReadOutcome::ProcessGone;
  }
  ReadOutcome Read(std::uint32_t address, void* buffer, std::size_t size) const {
    SIZE_T count = 0;
    const void* place = reinterpret_cast<const void*>(address);
    if (::ReadProcessMemory(handle_.Get(), place, buffer, size, &count) != FALSE && count == size) {
      return ReadOutcome::Complete;
    }
    // A process that has ended can still be opened while somebody holds a handle.
    return ::WaitForSingleObject(handle_.Get(), 0) == WAIT_OBJECT_0 ? ReadOutcome::ProcessGone
                                                                    : ReadOutcome::NotMapped;
  }

 private:
  const win32::UniqueHandle handle_;
};

/// Whether a program file has the name, with or without ".exe".
bool HasName(const wchar_t* programFile, const std::wstring& name) {
  return ::_wcsicmp(programFile, name.c_str()) == 0 ||
         ::_wcsicmp(programFile, (name + L".exe").c_str()) == 0;
}

/// The rows of the system's table of UDP sockets; empty if it cannot be read.
std::vector<MIB_UDPROW_OWNER_PID> UdpTable() {
  std::vector<char> bytes;
  DWORD size = 0;
  DWORD outcome = ERROR_INSUFFICIENT_BUFFER;
  while (outcome == ERROR_INSUFFICIENT_BUFFER) {  // the table may grow between two calls
    bytes.resize(size);
    outcome = ::GetExtendedUdpTable(bytes.data(), &size, FALSE, AF_INET, UDP_TABLE_OWNER_PID, 0);
  }
  if (outcome != NO_ERROR || bytes.size() < sizeof(DWORD)) return {};
  const auto* table = reinterpret_cast<const MIB_UDPTABLE_OWNER_PID*>(bytes.data());
  return {table->table, table->table + table->dwNumEntries};
}

std::uint16_t PortOf(const MIB_UDPROW_OWNER_PID& row) {
  return ::ntohs(static_cast<u_short>(row.dwLocalPort));
}

}  // namespace

ReadOutcome ReadProcess(ProcessId process, std::uint32_t address, void* buffer, std::size_t size) {
  const OpenedProcess opened(process);
  if (opened.Outcome() != ReadOutcome::Complete) return opened.Outcome();
  return opened.Read(address, buffer, size);
}

ReadOutcome ReadProcessUpTo(ProcessId process, std::uint32_t address, void* buffer,
                            std::size_t size, std::size_t& count) {
  const OpenedProcess opened(process);
  count = 0;
  if (opened.Outcome() != ReadOutcome::Complete) return opened.Outcome();
  // The system reads all or nothing, and mapped memory ends where a page ends.
  count = size;
  ReadOutcome outcome = opened.Read(address, buffer, size);
  const std::size_t toPageEnd = kPage - address % kPage;
  if (outcome == ReadOutcome::NotMapped && toPageEnd < size) {
    count = toPageEnd;
    outcome = opened.Read(address, buffer, toPageEnd);
  }
  if (outcome != ReadOutcome::Complete) count = 0;
  return outcome;
}

std::vector<ProcessId> FindProcesses(const std::string& programName) {
  std::vector<ProcessId> found;
  const win32::UniqueHandle snapshot(::CreateToolhelp32Snapshot(TH32CS_SNAPPROCESS, 0));
  if (!snapshot) return found;
  const std::wstring name = win32::ToWide(programName);
  PROCESSENTRY32W entry{};
  entry.dwSize = sizeof entry;
  for (BOOL more = ::Process32FirstW(snapshot.Get(), &entry); more != FALSE;
       more = ::Process32NextW(snapshot.Get(), &entry)) {
    if (HasName(entry.szExeFile, name)) found.push_back(entry.th32ProcessID);
  }
  return found;
}

std::vector<ReceivedPort> UdpPortsOf(ProcessId process) {
  std::vector<ReceivedPort> ports;
  for (const MIB_UDPROW_OWNER_PID& row : UdpTable()) {
    if (row.dwOwningPid == process) ports.push_back({PortOf(row), HoldsPort::Yes, process});
    if (row.dwOwningPid == kUnknown) ports.push_back({PortOf(row), HoldsPort::Perhaps, kUnknown});
  }
  return ports;
}

bool IsStillOpen(const ReceivedPort& port) {
  const std::vector<MIB_UDPROW_OWNER_PID> table = UdpTable();
  return std::any_of(table.begin(), table.end(), [&](const MIB_UDPROW_OWNER_PID& row) {
    return row.dwOwningPid == port.holder && PortOf(row) == port.port;
  });
}

bool ReceivesUdp(std::uint16_t port) {
  const std::vector<MIB_UDPROW_OWNER_PID> table = UdpTable();
  return std::any_of(table.begin(), table.end(),
                     [&](const MIB_UDPROW_OWNER_PID& row) { return PortOf(row) == port; });
}

}  // namespace rotacasts::host
