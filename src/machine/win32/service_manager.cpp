#include "machine/win32/service_manager.h"

#include <utility>

#include "base/runtime_error.h"
#include "com/com_support.h"
#include "com/unique_handle.h"
#include "machine/win32/program_end.h"

namespace rotacasts::host {
namespace {

constexpr DWORD kRestartAfter = 5000;     // milliseconds
constexpr DWORD kForgetFailures = 86400;  // seconds
constexpr DWORD kLongestStop = 30000;     // milliseconds
constexpr DWORD kStateLook = 50;          // milliseconds between two looks at its state

[[noreturn]] void Raise(DWORD problem, const std::wstring& name) {
  ErrorNumber number = ErrorNumber::DeviceIoError;
  std::string words = win32::DescribeResult(static_cast<HRESULT>(problem));
  if (problem == ERROR_ACCESS_DENIED) {
    number = ErrorNumber::PermissionDenied;
    words = "run this as an administrator";
  } else if (problem == ERROR_SERVICE_DOES_NOT_EXIST) {
    number = ErrorNumber::FileNotFound;
    words = "there is none; \"service install\" makes it";
  } else if (problem == ERROR_SERVICE_LOGON_FAILED || problem == ERROR_INVALID_SERVICE_ACCOUNT) {
    words = "its account or the password is wrong";
  }
  throw RuntimeError(static_cast<std::int32_t>(number),
                     "the service \"" + win32::FromWide(name) + "\": " + words);
}

/// An owner of a handle of the service manager.
class ServiceHandle {
 public:
  explicit ServiceHandle(SC_HANDLE handle) : handle_(handle) {}
  ~ServiceHandle() {
    if (handle_ != nullptr) ::CloseServiceHandle(handle_);
  }
  ServiceHandle(const ServiceHandle&) = delete;
  ServiceHandle& operator=(const ServiceHandle&) = delete;
  SC_HANDLE Get() const { return handle_; }
  explicit operator bool() const { return handle_ != nullptr; }

 private:
  SC_HANDLE handle_;
};

/// A service and the manager that it was opened through.
struct Opened {
  Opened(const std::wstring& name, DWORD managerAccess, DWORD access)
      : manager(::OpenSCManagerW(nullptr, nullptr, managerAccess)),
        service(manager ? ::OpenServiceW(manager.Get(), name.c_str(), access) : nullptr) {}

  const ServiceHandle manager;
  const ServiceHandle service;
};

const wchar_t* OrNull(const std::wstring& text) {
  return text.empty() ? nullptr : text.c_str();
}

/// What an older system does not know stays as it was there.
void Describe(SC_HANDLE service, const Service::Setup& setup) {
  SERVICE_DESCRIPTIONW description{const_cast<wchar_t*>(setup.description.c_str())};
  ::ChangeServiceConfig2W(service, SERVICE_CONFIG_DESCRIPTION, &description);
  SC_ACTION again{SC_ACTION_RESTART, kRestartAfter};
  SERVICE_FAILURE_ACTIONSW failures{kForgetFailures, nullptr, nullptr, 1, &again};
  ::ChangeServiceConfig2W(service, SERVICE_CONFIG_FAILURE_ACTIONS, &failures);
  static constexpr wchar_t kNeeded[] = L"SeDebugPrivilege\0SeChangeNotifyPrivilege\0";
  SERVICE_REQUIRED_PRIVILEGES_INFOW needed{const_cast<wchar_t*>(kNeeded)};
  if (setup.account.empty()) {
    ::ChangeServiceConfig2W(service, SERVICE_CONFIG_REQUIRED_PRIVILEGES_INFO, &needed);
  }
}

DWORD StateOf(SC_HANDLE service) {
  SERVICE_STATUS status{};
  ::QueryServiceStatus(service, &status);
  return status.dwCurrentState;
}

/// The one service of this process.
struct Running {
  std::wstring name;
  std::function<int()> work;
  std::function<bool(int)> isCrash;
  SERVICE_STATUS_HANDLE handle = nullptr;
};

Running& TheRunning() {
  static auto* const running = new Running;
  return *running;
}

void Tell(DWORD state) {
  SERVICE_STATUS status{};
  status.dwServiceType = SERVICE_WIN32_OWN_PROCESS;
  status.dwCurrentState = state;
  status.dwControlsAccepted =
      state == SERVICE_RUNNING ? SERVICE_ACCEPT_STOP | SERVICE_ACCEPT_SHUTDOWN : 0;
  status.dwWaitHint = kLongestStop;
  ::SetServiceStatus(TheRunning().handle, &status);
}

DWORD WINAPI Control(DWORD control, DWORD, void*, void*) {
  if (control == SERVICE_CONTROL_STOP || control == SERVICE_CONTROL_SHUTDOWN) {
    Tell(SERVICE_STOP_PENDING);
    AskToEnd();
  }
  return NO_ERROR;
}

void WINAPI ServiceMain(DWORD, wchar_t**) {
  Running& running = TheRunning();
  StayAtLogoff();
  running.handle = ::RegisterServiceCtrlHandlerExW(running.name.c_str(), Control, nullptr);
  Tell(SERVICE_RUNNING);
  const int status = running.work();
  // A process that ends without a word has crashed, as far as the manager knows.
  if (running.isCrash(status)) ::ExitProcess(static_cast<UINT>(status));
  Tell(SERVICE_STOPPED);
}

}  // namespace

void Service::Install(const Setup& setup) const {
  const Opened opened(name_, SC_MANAGER_CREATE_SERVICE, SERVICE_ALL_ACCESS);
  if (!opened.manager) Raise(::GetLastError(), name_);
  if (opened.service) {
    if (::ChangeServiceConfigW(opened.service.Get(), SERVICE_WIN32_OWN_PROCESS, SERVICE_AUTO_START,
                               SERVICE_ERROR_NORMAL, setup.command.c_str(), nullptr, nullptr,
                               nullptr,
                               setup.account.empty() ? L"LocalSystem" : setup.account.c_str(),
                               setup.account.empty() ? L"" : OrNull(setup.password),
                               setup.shownName.c_str()) == FALSE) {
      Raise(::GetLastError(), name_);
    }
    return Describe(opened.service.Get(), setup);
  }
  const ServiceHandle made(::CreateServiceW(
      opened.manager.Get(), name_.c_str(), setup.shownName.c_str(), SERVICE_ALL_ACCESS,
      SERVICE_WIN32_OWN_PROCESS, SERVICE_AUTO_START, SERVICE_ERROR_NORMAL, setup.command.c_str(),
      nullptr, nullptr, nullptr, OrNull(setup.account), OrNull(setup.password)));
  if (!made) Raise(::GetLastError(), name_);
  Describe(made.Get(), setup);
}

void Service::Remove() const {
  Stop();
  const Opened opened(name_, SC_MANAGER_CONNECT, DELETE);
  if (!opened.service || ::DeleteService(opened.service.Get()) == FALSE) {
    Raise(::GetLastError(), name_);
  }
}

void Service::Start() const {
  const Opened opened(name_, SC_MANAGER_CONNECT, SERVICE_START);
  const bool isStarted =
      opened.service && ::StartServiceW(opened.service.Get(), 0, nullptr) != FALSE;
  if (!isStarted && ::GetLastError() != ERROR_SERVICE_ALREADY_RUNNING)
    Raise(::GetLastError(), name_);
}

void Service::Stop() const {
  const Opened opened(name_, SC_MANAGER_CONNECT, SERVICE_STOP | SERVICE_QUERY_STATUS);
  if (!opened.service) Raise(::GetLastError(), name_);
  SERVICE_STATUS status{};
  if (::ControlService(opened.service.Get(), SERVICE_CONTROL_STOP, &status) == FALSE) {
    const DWORD problem = ::GetLastError();
    if (problem == ERROR_SERVICE_NOT_ACTIVE) return;
    Raise(problem, name_);
  }
  for (DWORD waited = 0; StateOf(opened.service.Get()) != SERVICE_STOPPED; waited += kStateLook) {
    if (waited >= kLongestStop) Raise(ERROR_SERVICE_REQUEST_TIMEOUT, name_);
    ::Sleep(kStateLook);
  }
}

std::string Service::State() const {
  const Opened opened(name_, SC_MANAGER_CONNECT, SERVICE_QUERY_STATUS);
  if (!opened.service) {
    const DWORD problem = ::GetLastError();
    if (problem == ERROR_SERVICE_DOES_NOT_EXIST) return "not installed";
    Raise(problem, name_);
  }
  switch (StateOf(opened.service.Get())) {
    case SERVICE_STOPPED:
      return "stopped";
    case SERVICE_START_PENDING:
      return "starting";
    case SERVICE_STOP_PENDING:
      return "stopping";
    default:
      return "running";
  }
}

bool RunAsService(const std::wstring& name, std::function<int()> work,
                  std::function<bool(int)> isCrash) {
  Running& running = TheRunning();
  running = {name, std::move(work), std::move(isCrash)};
  const SERVICE_TABLE_ENTRYW services[] = {{running.name.data(), ServiceMain}, {nullptr, nullptr}};
  return ::StartServiceCtrlDispatcherW(services) != FALSE;
}

void EnableReadingProcesses() {
  HANDLE opened = nullptr;
  if (::OpenProcessToken(::GetCurrentProcess(), TOKEN_ADJUST_PRIVILEGES, &opened) == FALSE) return;
  const win32::UniqueHandle token(opened);
  TOKEN_PRIVILEGES privileges{1, {{{}, SE_PRIVILEGE_ENABLED}}};
  if (::LookupPrivilegeValueW(nullptr, L"SeDebugPrivilege", &privileges.Privileges[0].Luid)) {
    ::AdjustTokenPrivileges(token.Get(), FALSE, &privileges, 0, nullptr, nullptr);
  }
}

}  // namespace rotacasts::host
