#include "machine/win32/program_starter.h"

#include <algorithm>
#include <utility>

#include "base/runtime_error.h"
#include "com/com_support.h"
#include "machine/program_lookup.h"
#include "machine/win32/program_file.h"

namespace rotacasts::host {
namespace {

constexpr DWORD kOutputLook = 20;  // milliseconds between two looks at what a program writes
/// This much of a program's standard error is kept; the rest is read and dropped.
constexpr std::size_t kMostWords = 400;
/// How a program ends that is ended here.
constexpr UINT kEndedStatus = 1;

/// A word of a command line, as programs of Windows take it apart: within quotes, where a backslash
/// stands for itself unless a quote follows.
std::wstring Quoted(const std::wstring& word) {
  std::wstring quoted = L"\"";
  std::size_t backslashes = 0;
  for (const wchar_t letter : word) {
    if (letter == L'"') quoted.append(backslashes + 1, L'\\');
    backslashes = letter == L'\\' ? backslashes + 1 : 0;
    quoted += letter;
  }
  return quoted.append(backslashes, L'\\') + L'"';
}

std::wstring CommandLineOf(const std::vector<std::string>& command) {
  std::wstring line;
  for (const std::string& word : command) {
    if (!line.empty()) line += L' ';
    line += Quoted(win32::ToWide(word));
  }
  return line;
}

/// A handle that a started program gets.
SECURITY_ATTRIBUTES Inherited() {
  return {sizeof(SECURITY_ATTRIBUTES), nullptr, TRUE};
}

win32::UniqueHandle Nothing() {
  SECURITY_ATTRIBUTES inherited = Inherited();
  return win32::UniqueHandle(::CreateFileW(L"NUL", GENERIC_READ | GENERIC_WRITE,
                                           FILE_SHARE_READ | FILE_SHARE_WRITE, &inherited,
                                           OPEN_EXISTING, 0, nullptr));
}

/// Ends its programs when it is closed.
win32::UniqueHandle NewJob() {
  win32::UniqueHandle job(::CreateJobObjectW(nullptr, nullptr));
  JOBOBJECT_EXTENDED_LIMIT_INFORMATION limits{};
  limits.BasicLimitInformation.LimitFlags = JOB_OBJECT_LIMIT_KILL_ON_JOB_CLOSE;
  ::SetInformationJobObject(job.Get(), JobObjectExtendedLimitInformation, &limits, sizeof limits);
  return job;
}

/// Says which handles a program gets, so that it keeps no pipe of another one open.
class HandleList {
 public:
  explicit HandleList(std::vector<HANDLE> handles) : handles_(std::move(handles)) {
    SIZE_T size = 0;
    ::InitializeProcThreadAttributeList(nullptr, 1, 0, &size);
    bytes_.resize(size);
    ::InitializeProcThreadAttributeList(Get(), 1, 0, &size);
    ::UpdateProcThreadAttribute(Get(), 0, PROC_THREAD_ATTRIBUTE_HANDLE_LIST, handles_.data(),
                                handles_.size() * sizeof(HANDLE), nullptr, nullptr);
  }
  ~HandleList() { ::DeleteProcThreadAttributeList(Get()); }
  HandleList(const HandleList&) = delete;
  HandleList& operator=(const HandleList&) = delete;

  LPPROC_THREAD_ATTRIBUTE_LIST Get() {
    return reinterpret_cast<LPPROC_THREAD_ATTRIBUTE_LIST>(bytes_.data());
  }

 private:
  std::vector<HANDLE> handles_;
  std::vector<char> bytes_;
};

[[noreturn]] void RaiseNotStarted(const std::string& name, DWORD problem) {
  throw RuntimeError(
      static_cast<std::int32_t>(ErrorNumber::DeviceIoError),
      name + " cannot be started (" + win32::DescribeResult(static_cast<HRESULT>(problem)) + ")");
}

std::wstring FileOf(const std::string& name) {
  const std::string problem = WhyNotStartable(name);
  if (problem.empty()) return win32::FindProgram(name);
  throw RuntimeError(static_cast<std::int32_t>(ErrorNumber::InvalidProcedureCall),
                     name + " cannot be started: it " + problem);
}

}  // namespace

/// One program, which belongs to the starter and to the thread that waits for it.
struct ProgramStarter::Child {
  std::string name;
  win32::UniqueHandle process{nullptr};
  win32::UniqueHandle job = NewJob();
  win32::UniqueHandle errors{nullptr};
  std::string words;
  std::chrono::milliseconds timeLimit{};
  bool isLate = false;

  void Start(const std::vector<std::string>& command);
  /// Waits until it ends, and ends it when it takes too long.
  void Wait();
  void ReadErrors();
  /// How it ended, and what it wrote.
  ProgramEnd End();
};

void ProgramStarter::Child::Start(const std::vector<std::string>& command) {
  name = command.at(0);
  const std::wstring file = FileOf(name);
  HANDLE ends[2] = {};
  SECURITY_ATTRIBUTES inherited = Inherited();
  if (::CreatePipe(&ends[0], &ends[1], &inherited, 0) == FALSE) {
    RaiseNotStarted(name, ::GetLastError());
  }
  errors = win32::UniqueHandle(ends[0]);
  const win32::UniqueHandle writer(ends[1]);
  const win32::UniqueHandle nothing = Nothing();
  HandleList handles({nothing.Get(), writer.Get()});
  STARTUPINFOEXW start{};
  start.StartupInfo.cb = sizeof start;
  start.StartupInfo.dwFlags = STARTF_USESTDHANDLES;
  start.StartupInfo.hStdInput = start.StartupInfo.hStdOutput = nothing.Get();
  start.StartupInfo.hStdError = writer.Get();
  start.lpAttributeList = handles.Get();
  std::wstring line = CommandLineOf(command);
  PROCESS_INFORMATION started{};
  if (::CreateProcessW(file.c_str(), line.data(), nullptr, nullptr, TRUE,
                       CREATE_SUSPENDED | CREATE_NO_WINDOW | EXTENDED_STARTUPINFO_PRESENT, nullptr,
                       nullptr, &start.StartupInfo, &started) == FALSE) {
    RaiseNotStarted(name, ::GetLastError());
  }
  process = win32::UniqueHandle(started.hProcess);
  const win32::UniqueHandle thread(started.hThread);
  ::AssignProcessToJobObject(job.Get(), process.Get());
  ::ResumeThread(thread.Get());
}

void ProgramStarter::Child::ReadErrors() {
  char bytes[512];
  for (DWORD waiting = 0;
       ::PeekNamedPipe(errors.Get(), nullptr, 0, nullptr, &waiting, nullptr) != FALSE &&
       waiting > 0;) {
    DWORD count = 0;
    ::ReadFile(errors.Get(), bytes, std::min<DWORD>(waiting, sizeof bytes), &count, nullptr);
    const std::size_t room = kMostWords - std::min(words.size(), kMostWords);
    words.append(bytes, std::min<std::size_t>(room, count));
  }
}

void ProgramStarter::Child::Wait() {
  const ULONGLONG begin = ::GetTickCount64();
  while (::WaitForSingleObject(process.Get(), kOutputLook) == WAIT_TIMEOUT) {
    ReadErrors();
    isLate = ::GetTickCount64() - begin > static_cast<ULONGLONG>(timeLimit.count());
    if (!isLate) continue;
    ::TerminateProcess(process.Get(), kEndedStatus);  // also where no job could take it
    break;
  }
  ::TerminateJobObject(job.Get(), kEndedStatus);  // its children
  ::WaitForSingleObject(process.Get(), INFINITE);
  ReadErrors();
}

ProgramEnd ProgramStarter::Child::End() {
  DWORD status = 0;
  ::GetExitCodeProcess(process.Get(), &status);
  std::string problem = status == 0 ? "" : "ended with status " + std::to_string(status);
  if (isLate) {
    const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(timeLimit);
    problem = "took longer than " + std::to_string(seconds.count()) + " s and was ended";
  }
  const bool isDone = problem.empty();
  std::replace_if(
      words.begin(), words.end(), [](char letter) { return letter == '\r' || letter == '\n'; },
      ' ');
  words.erase(words.find_last_not_of(' ') + 1);
  if (!words.empty()) problem += (isDone ? "said: " : ": ") + words;
  return {isDone, problem.empty() ? "" : name + " " + problem};
}

ProgramStarter::~ProgramStarter() {
  for (const auto& child : running_) {
    ::TerminateProcess(child->process.Get(), kEndedStatus);
    ::TerminateJobObject(child->job.Get(), kEndedStatus);
  }
}

/// What the thread of a program needs.
struct ProgramStarter::Waiter {
  std::shared_ptr<Child> child;
  std::shared_ptr<WorkQueue> queue;
  std::function<void()> end;  // for the loop

  static DWORD WINAPI Run(void* parameter) {
    const std::unique_ptr<Waiter> waiter(static_cast<Waiter*>(parameter));
    waiter->child->Wait();
    waiter->queue->Post(std::move(waiter->end));
    return 0;
  }
};

void ProgramStarter::Start(const std::vector<std::string>& command,
                           std::function<void(const ProgramEnd&)> onEnd) {
  const auto child = std::make_shared<Child>();
  child->timeLimit = timeLimit_;
  child->Start(command);
  auto waiter = std::make_unique<Waiter>(Waiter{child, queue_, [this, child, onEnd] {
                                                  std::erase(running_, child);
                                                  onEnd(child->End());
                                                }});
  const win32::UniqueHandle thread(
      ::CreateThread(nullptr, 0, &Waiter::Run, waiter.get(), 0, nullptr));
  if (!thread) {
    ::TerminateProcess(child->process.Get(), kEndedStatus);
    RaiseNotStarted(child->name, ::GetLastError());
  }
  static_cast<void>(waiter.release());
  running_.push_back(child);
}

}  // namespace rotacasts::host
