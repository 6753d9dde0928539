// rotacasts-host: the stand-alone host's command line.

#include <CLI/CLI.hpp>
#include <filesystem>
#include <iostream>
#include <optional>
#include <string_view>

#include "base/version.h"
#include "check/check.h"
#include "console/console.h"
#include "console/plain_output.h"
#include "files/host_lock.h"
#include "files/native_files.h"
#include "machine/program_arguments.h"
#include "program/console_command.h"
#include "program/new_command.h"
#include "program/run_host.h"
#include "program/service_command.h"
#include "program/web_commands.h"
#include "services/host_folder.h"
#include "siblings/plain_words.h"

namespace {

using namespace rotacasts;
using namespace rotacasts::host;

constexpr int kCannotWork = 2;
constexpr int kTaken = 3;
constexpr int kFailed = 4;

std::ostream& Out() {
  static PlainOutput out(std::cout);
  return out;
}

std::ostream& Errors() {
  static PlainOutput errors(std::cerr);
  return errors;
}

/// Runs the folder's profiles, unless another host does. Returns the exit status.
int RunProfiles(const HostOptions& options, const std::function<HostRunner>& run) {
  HostProfiles profiles(options.folder, Out());
  profiles.PrintSkipped();
  std::optional<HostLock> lock;
  if (!profiles.All().empty()) {
    const LocalTime now = SystemClock().Now();
    lock.emplace(options.folder, FormatDate(now) + " " + FormatTime(now));
    if (!lock->Holder().empty()) {
      Errors() << options.folder << " has a host at work, " << lock->Holder()
               << "; end that one first\n";
      return kTaken;
    }
  }
  profiles.MakeWhatIsMissing();
  if (profiles.All().empty()) {
    Errors() << options.folder << " has no usable profile; \"rotacasts-host new NAME --host-folder "
             << options.folder << "\" sets one up, \"check\" says what is wrong with one\n";
    return kCannotWork;
  }
  run(profiles, options, Out());
  return 0;
}

int RunHeadless(const HostOptions& options, HostRun::Output output) {
  HostRun host(output);
  return RunProfiles(options, [&host](HostProfiles& profiles, const HostOptions& given,
                                      std::ostream& out) { host.Run(profiles, given, out); });
}

int RunInConsole(const HostOptions& options) {
  return RunHeadless(options, HostRun::Output::Console);
}

int RunWindow(const HostOptions& options) {
  return RunProfiles(options, kRunInWindow);
}

/// The profiles that the user named, or all of them.
std::vector<std::int32_t> Chosen(const HostOptions& options, const HostProfiles& profiles) {
  if (!options.profiles.empty()) return options.profiles;
  std::vector<std::int32_t> all;
  for (const auto& [index, profile] : profiles.All()) all.push_back(index);
  return all;
}

/// Returns 0 if every profile could be previewed, 1 if one could not or its game server cannot be
/// reached.
int PrintPreviews(const HostOptions& options) {
  HostProfiles profiles(options.folder, Out());
  int status = profiles.PrintSkipped() ? 0 : 1;
  Preview preview(profiles);
  for (const std::int32_t index : Chosen(options, profiles)) {
    if (!profiles.All().contains(index)) {
      Out() << "there is no profile " << index << "; preview shows all of them without --profile\n";
      status = 1;
      continue;
    }
    try {
      const ProfileSettings& profile = profiles.At(index);
      Out() << profile.Label() << ", " << profile.gameCode << "\n";
      const MessageList list(HostFolder(options.folder).MessageFile(profile.folder));
      if (!PrintMessageTable(Out(), preview, profile, list)) status = 1;
    } catch (const RuntimeError& error) {
      Out() << PlainWords(error) << "\n";
      status = 1;
    }
  }
  return status;
}

/// Returns 0 without warnings, else 1.
int Check(const HostOptions& options) {
  if (options.fix) {
    for (const std::string& line : ConvertHostFolder(options.folder)) Out() << line << "\n";
  }
  const Findings found = CheckHostFolder(options.folder);
  for (const std::string& warning : found.warnings) Out() << warning << "\n";
  Out() << "profiles checked: " << found.profiles << "; warnings: " << found.warnings.size()
        << "\n";
  return found.warnings.empty() ? 0 : 1;
}

constexpr const char* kExitStatus =
    "Exit status: 0 done; 1 check has a warning, or preview misses a profile or its game server;\n"
    "2 the call is wrong, or the host cannot work there; 3 another host works in the folder;\n"
    "4 something failed that may work next time, as when the memory ran out.";

/// What is wrong with a call, in words of its own where CLI11's take knowledge of a parser.
std::string WrongCall(const CLI::ParseError& error) {
  std::string words = error.what();
  const std::string option = words.substr(0, words.find(':'));
  if (words.starts_with("A subcommand")) return "a command is missing";
  if (option == "--minute") return "--minute takes a length of time, such as 1s or 300ms";
  if (error.get_name() == "ArgumentMismatch") return option + " needs a value behind it";
  if (error.get_name() != "ConversionError") return words;
  return words.substr(words.find("--")) + " is no whole number";
}

/// 2 for what fails until a person changes the call or the folder, 4 for anything else.
int StatusOf(const RuntimeError& error) {
  for (const ErrorNumber lasting : {ErrorNumber::InvalidProcedureCall, ErrorNumber::FileNotFound,
                                    ErrorNumber::FileAlreadyExists, ErrorNumber::PermissionDenied,
                                    ErrorNumber::PathFileAccessError, ErrorNumber::PathNotFound}) {
    if (error.Is(lasting)) return kCannotWork;
  }
  return kFailed;
}

/// The exit status of what `work` does, or of its error, which it prints.
int Status(const std::function<int()>& work) try { return work(); } catch (...) {
  const RuntimeError error = CurrentRuntimeError();
  Errors() << "rotacasts-host: " << PlainWords(error) << "\n";
  return StatusOf(error);
}

class CommandLine {
 public:
  CommandLine();
  /// Runs the command that the arguments name; returns the exit status.
  int Run(int argc, char** argv);

 private:
  CLI::App& Add(const char* name, const char* help, int (*command)(const HostOptions&));
  void AddRun(const char* name, const char* help, int (*command)(const HostOptions&));
  void AddFolder(CLI::App& command);
  /// Reports a wrong call and names the mistake.
  int Refuse(const CLI::ParseError& error) const;

  CLI::App app_{"Posts chat messages to game servers, round and round.", "rotacasts-host"};
  HostOptions options_;
  int status_ = 0;
};

CommandLine::CommandLine() {
  app_.footer(kExitStatus);
  app_.set_version_flag("--version", std::to_string(ROTACASTS_VERSION_MAJOR) + "." +
                                         std::to_string(ROTACASTS_VERSION_MINOR) + "." +
                                         std::to_string(ROTACASTS_VERSION_PATCH));
  app_.require_subcommand(1);
  const auto addFolder = [this](CLI::App& command) { AddFolder(command); };
  AddNewCommand(app_, options_, Out(), addFolder);
  AddRun("run", "Post the messages of every profile, and take commands at the console",
         RunInConsole);
  if (kRunInWindow != nullptr) {
    AddRun("window", "Do the same in a window, with the plugin's DLL", RunWindow);
  }
  Add("preview", "Print what every message would say at this moment", PrintPreviews)
      .add_option("--profile", options_.profiles, "only these profiles");
  Add("check", "Check every profile and message file; say file, line and what to do", Check)
      .add_flag("--fix", options_.fix,
                "first convert files saved as UTF-8, keeping a copy of each");
  AddServiceCommand(
      app_, options_, Out(), addFolder,
      [this] { return Status([this] { return RunHeadless(options_, HostRun::Output::AsItIs); }); },
      [](int status) { return status == kFailed; });
  AddConsoleCommand(app_, options_, status_, addFolder);
  AddWebCommands(app_, *app_.get_subcommand("run"), options_, Out(), addFolder);
}

CLI::App& CommandLine::Add(const char* name, const char* help, int (*command)(const HostOptions&)) {
  CLI::App* const added = app_.add_subcommand(name, help);
  added->footer(kExitStatus);
  AddFolder(*added);
  added->callback([this, command] { status_ = command(options_); });
  return *added;
}

void CommandLine::AddRun(const char* name, const char* help, int (*command)(const HostOptions&)) {
  const std::map<std::string, std::int64_t> units = {{"ms", 1}, {"s", 1000}, {"m", 60000}};
  CLI::App& run = Add(name, help, command);
  run.add_option("--admin", options_.administrator,
                 "the name under which the console's changes are logged")
      ->capture_default_str();
  run.add_flag("--shared-log", options_.sharedLog, "log changes for the whole host");
  run.add_option_function<std::int64_t>(
         "--minute",
         [this](std::int64_t length) { options_.minute = std::chrono::milliseconds(length); },
         "how long a minute lasts, such as 1s or 300ms")
      ->type_name("TIME")
      ->transform(
          CLI::AsNumberWithUnit(units, CLI::AsNumberWithUnit::UNIT_REQUIRED).description(""))
      ->check([](const std::string& milliseconds) -> std::string {
        return std::stoll(milliseconds) > 0 ? "" : "a minute takes some time, such as 1s";
      })
      ->default_str("60s");
}

void CommandLine::AddFolder(CLI::App& command) {
  command
      .add_option_function<std::string>(
          "--host-folder",
          [this](const std::string& folder) {
            if (folder.empty()) throw CLI::ValidationError("--host-folder is empty; name a folder");
            const auto path = std::filesystem::absolute(PathOf(folder)).lexically_normal();
            options_.folder = (path.has_filename() ? path : path.parent_path()).string();
          },
          "folder with profiles/ and settings/")
      ->required();
}

int CommandLine::Refuse(const CLI::ParseError& error) const {
  std::string words = WrongCall(error);
  // CLI11 itself complains about missing arguments before it notices unknown ones.
  const std::vector<std::string> unknown = app_.remaining(true);
  const auto chosen = app_.get_subcommands();
  const bool takesAny = !chosen.empty() && chosen.front()->get_prefix_command();
  if (!unknown.empty() && !takesAny) words = "\"" + unknown.front() + "\" is not known here";
  const std::string command = chosen.empty() ? "" : " " + chosen.front()->get_name();
  Errors() << "rotacasts-host" << command << ": " << words << "; \"rotacasts-host" << command
           << " --help\" tells more\n";
  return kCannotWork;
}

int CommandLine::Run(int argc, char** argv) try {
  app_.parse(ProgramArguments(argc, argv));
  return status_;
} catch (const CLI::Success& asked) {  // for help or the version
  return app_.exit(asked);
} catch (const CLI::ParseError& error) {
  return Refuse(error);
}

}  // namespace

int main(int argc, char** argv) {
  if (argc > 1 && std::string_view(argv[1]) == "run") HoldSignals();
  return Status([&] { return CommandLine().Run(argc, argv); });
}
