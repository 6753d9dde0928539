#include "program/service_command.h"

#include <algorithm>
#include <iostream>
#include <memory>

#include "com/com_support.h"
#include "machine/win32/event_log.h"
#include "machine/win32/service_manager.h"
#include "program/redirection.h"
#include "terminal/terminal.h"

namespace rotacasts::host {
namespace {

/// A service's name has no slash and no backslash; there is one for each folder.
std::wstring NameOf(const std::string& folder) {
  std::wstring name = L"rotacasts-host " + win32::ToWide(folder);
  std::replace_if(
      name.begin(), name.end(),
      [](wchar_t letter) { return letter == L'\\' || letter == L'/' || letter == L':'; }, L'-');
  ::CharLowerBuffW(name.data(), static_cast<DWORD>(name.size()));
  return name;
}

std::wstring OwnProgram() {
  wchar_t path[MAX_PATH];
  return {path, ::GetModuleFileNameW(nullptr, path, MAX_PATH)};
}

/// Asks without showing what is typed.
std::string AskPassword(const std::string& account) {
  const HANDLE input = ::GetStdHandle(STD_INPUT_HANDLE);
  DWORD mode = 0;
  const bool isConsole = ::GetConsoleMode(input, &mode) != FALSE;
  if (isConsole) ::SetConsoleMode(input, mode & ~DWORD{ENABLE_ECHO_INPUT});
  std::cout << "Password of " << account << " (empty if it has none): " << std::flush;
  std::string password;
  std::getline(std::cin, password);
  if (isConsole) ::SetConsoleMode(input, mode);
  std::cout << "\n";
  return password;
}

void Install(const std::string& folder, const std::string& account, std::ostream& out) {
  Service::Setup setup;
  setup.shownName = L"Rotacasts (" + win32::ToWide(folder) + L")";
  setup.description = L"Posts chat messages to game servers.";
  setup.command =
      L"\"" + OwnProgram() + L"\" service run --host-folder \"" + win32::ToWide(folder) + L"\"";
  setup.account = win32::ToWide(account);
  if (!account.empty()) setup.password = win32::ToWide(AskPassword(account));
  Service(NameOf(folder)).Install(setup);
  RegisterEvents(OwnProgram());
  out << "installed; \"service start\" starts it now, and the machine at its next start\n";
}

/// What the service itself does. What it prints becomes events.
int RunInService(const std::function<int()>& run) {
  EventLog log;
  const Redirection out(std::cout, log);
  const Redirection errors(std::cerr, log);
  EnableReadingProcesses();
  std::cout << "started" << std::endl;
  const int status = run();
  std::cout << "stopped" << std::endl;
  return status;
}

}  // namespace

void AddServiceCommand(CLI::App& program, const HostOptions& options, std::ostream& out,
                       const std::function<void(CLI::App&)>& addFolder, std::function<int()> run,
                       std::function<bool(int)> isCrash) {
  CLI::App* const all =
      program.add_subcommand("service", "Run the host as a service, which starts with the machine");
  all->require_subcommand(1);
  const auto add = [&](const char* name, const char* help, std::function<void()> act) {
    CLI::App* const command = all->add_subcommand(name, help);
    addFolder(*command);
    command->callback(std::move(act));
    return command;
  };
  const auto account = std::make_shared<std::string>();
  add("install", "Make the service, or change the one that is there", [&options, &out, account] {
    Install(options.folder, *account, out);
  })->add_option("--account", *account, "as whom it runs; the system itself by default");
  add("remove", "Stop the service and remove it", [&options, &out] {
    Service(NameOf(options.folder)).Remove();
    UnregisterEvents();
    out << "removed\n";
  });
  add("start", "Start the service", [&options, &out] {
    Service(NameOf(options.folder)).Start();
    out << "started\n";
  });
  add("stop", "Stop the service", [&options, &out] {
    Service(NameOf(options.folder)).Stop();
    out << "stopped\n";
  });
  add("status", "Print whether the service runs",
      [&options, &out] { out << Service(NameOf(options.folder)).State() << "\n"; });
  add("run", "What the system calls",
      [&options, &out, run = std::move(run), isCrash = std::move(isCrash)] {
        const auto work = [&run] { return RunInService(run); };
        if (!RunAsService(NameOf(options.folder), work, isCrash)) {
          out << "the system starts this itself; type \"service start\"\n";
        }
      })
      ->group("");  // not shown
}

}  // namespace rotacasts::host
