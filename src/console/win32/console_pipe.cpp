#include "console/win32/console_pipe.h"

#include <sddl.h>

#include <algorithm>
#include <memory>
#include <utility>

#include "base/runtime_error.h"
#include "com/com_support.h"
#include "host/complaint.h"
#include "siblings/plain_words.h"

namespace rotacasts::host {
namespace {

/// How many consoles a host serves at a time: enough for everybody who looks after one machine.
constexpr DWORD kMostConsoles = 16;
constexpr DWORD kBufferSize = 4096;    // bytes; only a guess at what is on its way
constexpr DWORD kPause = 500;          // milliseconds without a free instance
constexpr DWORD kStartingHost = 1000;  // milliseconds in which a host may still be starting
constexpr DWORD kAttemptPause = 50;

/// The owner, administrators and the system may do everything, and nobody else anything.
constexpr const wchar_t* kAccess = L"D:P(A;;GA;;;OW)(A;;GA;;;BA)(A;;GA;;;SY)";

/// One name for a folder, however its letters are written. A pipe's name has no backslash, and a
/// folder's has no slash.
std::wstring NameOf(const std::string& hostFolder) {
  std::wstring folder = win32::ToWide(hostFolder);
  std::replace(folder.begin(), folder.end(), L'\\', L'/');
  ::CharLowerBuffW(folder.data(), static_cast<DWORD>(folder.size()));
  return L"\\\\.\\pipe\\rotacasts-host " + folder;
}

class Access {
 public:
  Access() {
    ::ConvertStringSecurityDescriptorToSecurityDescriptorW(kAccess, SDDL_REVISION_1, &descriptor_,
                                                           nullptr);
  }
  ~Access() { ::LocalFree(descriptor_); }
  Access(const Access&) = delete;
  Access& operator=(const Access&) = delete;

  SECURITY_ATTRIBUTES Attributes() const {
    return {sizeof(SECURITY_ATTRIBUTES), descriptor_, FALSE};
  }

 private:
  PSECURITY_DESCRIPTOR descriptor_ = nullptr;
};

/// Creates an instance of the pipe, which serves one console. The first one fails if another
/// program has the name.
win32::UniqueHandle NewInstance(const std::wstring& name, bool isFirst) {
  const Access access;
  SECURITY_ATTRIBUTES attributes = access.Attributes();
  return win32::UniqueHandle(::CreateNamedPipeW(
      name.c_str(), PIPE_ACCESS_DUPLEX | (isFirst ? FILE_FLAG_FIRST_PIPE_INSTANCE : 0),
      PIPE_TYPE_BYTE | PIPE_WAIT | PIPE_REJECT_REMOTE_CLIENTS, kMostConsoles, kBufferSize,
      kBufferSize, 0, &attributes));
}

bool WriteAll(HANDLE pipe, std::string_view bytes) {
  while (!bytes.empty()) {
    DWORD count = 0;
    if (::WriteFile(pipe, bytes.data(), static_cast<DWORD>(bytes.size()), &count, nullptr) ==
        FALSE) {
      return false;
    }
    bytes.remove_prefix(count);
  }
  return true;
}

/// The next bytes; empty at the connection's end.
std::string ReadPiece(HANDLE pipe) {
  char bytes[kBufferSize];
  DWORD count = 0;
  if (::ReadFile(pipe, bytes, sizeof bytes, &count, nullptr) == FALSE) return {};
  return {bytes, count};
}

struct Server {
  std::wstring name;
  std::function<ConsoleAnswer(const std::string&)> ask;
};

struct Connection {
  Server server;
  win32::UniqueHandle pipe;
};

/// False when the connection is to end.
bool AnswerLine(const Connection& connection, const std::string& line) {
  const ConsoleAnswer answer = connection.server.ask(line);
  return !answer.bytes.empty() && WriteAll(connection.pipe.Get(), answer.bytes) && !answer.isLast;
}

void Answer(const Connection& connection) {
  std::string received;
  for (;;) {
    const std::string piece = ReadPiece(connection.pipe.Get());
    received += piece;
    if (piece.empty() || received.size() > kLongestCommand) return;
    for (auto end = received.find('\n'); end != received.npos; end = received.find('\n')) {
      if (!AnswerLine(connection, received.substr(0, end))) return;
      received.erase(0, end + 1);
    }
  }
}

DWORD WINAPI RunConnection(void* parameter) {
  const std::unique_ptr<Connection> connection(static_cast<Connection*>(parameter));
  try {
    Answer(*connection);
  } catch (...) {  // out of memory: only this console stops
  }
  ::FlushFileBuffers(connection->pipe.Get());
  return 0;
}

template <class State>
void StartThread(LPTHREAD_START_ROUTINE routine, std::unique_ptr<State> state) {
  const win32::UniqueHandle thread(::CreateThread(nullptr, 0, routine, state.get(), 0, nullptr));
  if (thread) static_cast<void>(state.release());
}

DWORD WINAPI AcceptConsoles(void* parameter) {
  const std::unique_ptr<Connection> next(static_cast<Connection*>(parameter));
  for (;;) {
    win32::UniqueHandle& pipe = next->pipe;
    const bool isConnected = ::ConnectNamedPipe(pipe.Get(), nullptr) != FALSE ||
                             ::GetLastError() == ERROR_PIPE_CONNECTED;
    if (isConnected) {
      StartThread(RunConnection,
                  std::make_unique<Connection>(Connection{next->server, std::move(pipe)}));
    }
    for (pipe = NewInstance(next->server.name, false); !pipe;
         pipe = NewInstance(next->server.name, false)) {
      ::Sleep(kPause);
    }
  }
}

HANDLE Open(const std::wstring& name) {
  return ::CreateFileW(name.c_str(), GENERIC_READ | GENERIC_WRITE, 0, nullptr, OPEN_EXISTING,
                       SECURITY_SQOS_PRESENT | SECURITY_IDENTIFICATION, nullptr);
}

/// Waits a moment for a host that is just starting, or for a console that leaves.
win32::UniqueHandle Connect(const std::string& hostFolder) {
  const std::wstring name = NameOf(hostFolder);
  for (DWORD waited = 0;; waited += kAttemptPause) {
    win32::UniqueHandle pipe(Open(name));
    if (pipe) return pipe;
    const DWORD problem = ::GetLastError();
    if (problem == ERROR_ACCESS_DENIED) {
      throw Complaint("only the user of the host in " + hostFolder +
                      ", and administrators, may use its console; run this as one");
    }
    if (waited >= kStartingHost) {
      if (problem != ERROR_PIPE_BUSY) ComplainOfNoHost(hostFolder);
      throw Complaint("the host in " + hostFolder + " serves as many consoles as it can; end one");
    }
    ::Sleep(kAttemptPause);
  }
}

}  // namespace

void ServeConsolePipe(const std::string& hostFolder,
                      std::function<ConsoleAnswer(const std::string&)> ask) {
  std::wstring name = NameOf(hostFolder);
  win32::UniqueHandle first = NewInstance(name, true);
  if (!first) {
    throw RuntimeError(ErrorNumber::DeviceIoError, "no pipe " + win32::FromWide(name) +
                                                       " can be made (error " +
                                                       std::to_string(::GetLastError()) + ")");
  }
  StartThread(AcceptConsoles, std::make_unique<Connection>(
                                  Connection{{std::move(name), std::move(ask)}, std::move(first)}));
}

void ServeOtherConsoles(const std::string& hostFolder, std::ostream& out,
                        std::function<ConsoleAnswer(const std::string&)> ask) try {
  ServeConsolePipe(hostFolder, std::move(ask));
} catch (const RuntimeError& error) {
  out << kNoOtherConsoles << PlainWords(error) << "\n" << std::flush;
}

PipeToConsole::PipeToConsole(const std::string& hostFolder, std::ostream& out)
    : pipe_(Connect(hostFolder)), printer_(out) {}

bool PipeToConsole::Ask(const std::string& line) {
  if (!WriteAll(pipe_.Get(), line + "\n")) return false;
  for (;;) {
    const std::string piece = ReadPiece(pipe_.Get());
    if (piece.empty()) return false;
    if (printer_.Print(piece)) return true;
  }
}

}  // namespace rotacasts::host
