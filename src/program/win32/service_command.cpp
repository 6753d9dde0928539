#include "program/service_command.h"

#include <algorithm>
#include <iostream>
#include <memory>

#include "com/com_support.h"
#include "machine/tcp.h"
#include "machine/win32/event_log.h"
#include "machine/win32/service_manager.h"
#include "program/redirection.h"
#include "program/web_commands.h"
#include "terminal/hidden_input.h"

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

std::string AskPassword(const std::string& account) {
  HiddenInput input;
  std::cout << "Password of " << account << " (empty if it has none): " << std::flush;
  std::string password = input.Line();
  std::cout << "\n";
  return password;
}

/// The options for the page, as they were given.
std::string PageOptions(const HostOptions& options) {
  if (options.web.empty()) return "";
  ListenAddress{options.web};  // which refuses what is none
  std::string text = " --web " + options.web;
  for (const std::string& name : options.webHosts) text += " --web-host " + name;
  return text;
}

void Install(const HostOptions& options, const std::string& account, std::ostream& out) {
  const std::string& folder = options.folder;
  Service::Setup setup;
  setup.shownName = L"Rotacasts (" + win32::ToWide(folder) + L")";
  setup.description = L"Posts chat messages to game servers.";
  setup.command = L"\"" + OwnProgram() + L"\" service run --host-folder \"" +
                  win32::ToWide(folder) + L"\"" + win32::ToWide(PageOptions(options));
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

/// Runs the host as the service; for a person it only says what to type instead.
std::function<void()> CalledBySystem(const HostOptions& options, std::ostream& out,
                                     const std::function<int()>& run,
                                     const std::function<bool(int)>& isCrash) {
  return [&options, &out, run, isCrash] {
    const auto work = [&run] { return RunInService(run); };
    if (!RunAsService(NameOf(options.folder), work, isCrash)) {
      out << "the system starts this itself; type \"service start\"\n";
    }
  };
}

}  // namespace

void AddServiceCommand(CLI::App& program, HostOptions& options, std::ostream& out,
                       const std::function<void(CLI::App&)>& addFolder,
                       const std::function<int()>& run, const std::function<bool(int)>& isCrash) {
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
  CLI::App* const install = add("install", "Make the service, or change the one that is there",
                                [&options, &out, account] { Install(options, *account, out); });
  install->add_option("--account", *account, "as whom it runs; the system itself by default");
  AddPageOptions(*install, options);
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
  CLI::App* const called =
      add("run", "What the system calls", CalledBySystem(options, out, run, isCrash));
  called->group("");  // not shown
  AddPageOptions(*called, options);
}

}  // namespace rotacasts::host
