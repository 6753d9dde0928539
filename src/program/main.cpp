// rotacasts-host: the stand-alone host's command line.

#include <CLI/CLI.hpp>
#include <filesystem>
#include <iostream>
#include <optional>

#include "base/version.h"
#include "check/check.h"
#include "console/console.h"
#include "console/plain_output.h"
#include "machine/host_lock.h"
#include "machine/native_files.h"
#include "machine/program_arguments.h"
#include "program/console_command.h"
#include "program/new_command.h"
#include "program/run_host.h"
#include "program/web_commands.h"
#include "services/host_folder.h"

namespace {

using namespace rotacasts;
using namespace rotacasts::host;

constexpr int kCannotWork = 2;
constexpr int kTaken = 3;

std::ostream& Out() {
  static PlainOutput out(std::cout);
  return out;
}

std::ostream& Errors() {
  static PlainOutput errors(std::cerr);
  return errors;
}

int Run(const HostOptions& options) {
  HostProfiles profiles(options.folder, Out());
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
    Errors() << options.folder
             << " has no usable profile; each needs a file profiles/NAME/profile.ini "
             << "with the section [Profile] and the keys Index, GameCode, Process and Target\n";
    return kCannotWork;
  }
  RunHost(profiles, options, Out());
  return 0;
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
  Preview preview(profiles);
  int status = 0;
  for (const std::int32_t index : Chosen(options, profiles)) {
    try {
      const ProfileSettings& profile = profiles.At(index);
      Out() << profile.Label() << ", " << profile.gameCode << "\n";
      const MessageList list(HostFolder(options.folder).MessageFile(profile.folder));
      if (!PrintMessageTable(Out(), preview, profile, list)) status = 1;
    } catch (const RuntimeError& error) {
      Out() << error.description << "\n";
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

/// Reports a wrong call and names the mistake. CLI11 itself complains about missing arguments
/// before it notices unknown ones.
int RefuseCall(const CLI::App& app, const CLI::ParseError& error) {
  std::string words = error.what();
  const std::vector<std::string> unknown = app.remaining(true);
  const auto chosen = app.get_subcommands();
  const bool takesAny = !chosen.empty() && chosen.front()->get_prefix_command();
  if (!unknown.empty() && !takesAny) words = "\"" + unknown.front() + "\" is not known here";
  const std::string command = chosen.empty() ? "" : " " + chosen.front()->get_name();
  Errors() << "rotacasts-host" << command << ": " << words << "; \"rotacasts-host" << command
           << " --help\" tells more\n";
  return kCannotWork;
}

constexpr const char* kExitStatus =
    "Exit status: 0 done; 1 check has a warning, or preview misses a profile or its game server;\n"
    "2 the call is wrong, or the host cannot work there; 3 another host works in the folder.";

}  // namespace

int main(int argc, char** argv) {
  CLI::App app("Posts chat messages to game servers, round and round.", "rotacasts-host");
  app.footer(kExitStatus);
  app.set_version_flag("--version", std::to_string(ROTACASTS_VERSION_MAJOR) + "." +
                                        std::to_string(ROTACASTS_VERSION_MINOR) + "." +
                                        std::to_string(ROTACASTS_VERSION_PATCH));
  app.require_subcommand(1);
  const std::map<std::string, std::int64_t> units = {{"ms", 1}, {"s", 1000}, {"m", 60000}};
  HostOptions options;
  int status = 0;
  const auto addFolder = [&options](CLI::App& command) {
    command
        .add_option_function<std::string>(
            "--host-folder",
            [&options](const std::string& folder) {
              options.folder =
                  std::filesystem::absolute(PathOf(folder)).lexically_normal().string();
            },
            "folder with profiles/ and settings/")
        ->required();
  };
  const auto add = [&](const char* name, const char* help, int (*command)(const HostOptions&)) {
    CLI::App* added = app.add_subcommand(name, help);
    added->footer(kExitStatus);
    addFolder(*added);
    added->callback([&options, &status, command] { status = command(options); });
    return added;
  };
  CLI::App* run = add("run", "Start every profile and listen to the console", Run);
  run->add_option("--admin", options.administrator, "who the console's changes are logged under")
      ->capture_default_str();
  run->add_flag("--shared-log", options.sharedLog, "log changes for the whole host");
  run->add_option_function<std::int64_t>(
         "--minute",
         [&options](std::int64_t length) { options.minute = std::chrono::milliseconds(length); },
         "how long a minute lasts, such as 1s or 300ms")
      ->transform(CLI::AsNumberWithUnit(units, CLI::AsNumberWithUnit::UNIT_REQUIRED, "TIME"))
      ->check(CLI::PositiveNumber)
      ->default_str("60s");
  AddNewCommand(app, options, Out(), addFolder);
  add("preview", "Print what every message would say at this moment", PrintPreviews)
      ->add_option("--profile", options.profiles, "only these profiles");
  add("check", "Look the whole folder over and warn of what would surprise", Check)
      ->add_flag("--fix", options.fix,
                 "first convert files saved as UTF-8, keeping a copy of each");
  AddConsoleCommand(app, options, status, addFolder);
  AddWebCommands(app, *run, options, Out(), addFolder);
  try {
    app.parse(ProgramArguments(argc, argv));
    return status;
  } catch (const CLI::Success& asked) {  // for help or the version
    return app.exit(asked);
  } catch (const CLI::ParseError& error) {
    return RefuseCall(app, error);
  } catch (...) {
    Errors() << "rotacasts-host: " << CurrentRuntimeError().description << "\n";
    return kCannotWork;
  }
}
