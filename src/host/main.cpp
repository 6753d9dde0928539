// rotacasts-host: the stand-alone host's command line.

#include <CLI/CLI.hpp>
#include <filesystem>
#include <iostream>

#include "host/check.h"
#include "host/console.h"
#include "host/machine/native_files.h"
#include "host/machine/program_arguments.h"
#include "host/run_host.h"
#include "host/terminal.h"
#include "host/version.h"
#include "store/profile_paths.h"

namespace {

using namespace rotacasts;
using namespace rotacasts::host;

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
  profiles.MakeWhatIsMissing();
  if (profiles.All().empty()) {
    Errors() << options.folder
             << " has no usable profile; each needs a file profiles/NAME/profile.ini "
             << "with the section [Profile] and the keys Index, GameCode, Process and Target\n";
    return 2;
  }
  RunHost(profiles, options, Out());
  return 0;
}

/// The profiles that the person named, or all of them.
std::vector<std::int32_t> Chosen(const HostOptions& options, const HostProfiles& profiles) {
  if (!options.profiles.empty()) return options.profiles;
  std::vector<std::int32_t> all;
  for (const auto& [index, profile] : profiles.All()) all.push_back(index);
  return all;
}

/// 0 when every profile could be previewed, 1 when there is one that could not, or whose game
/// server cannot be reached.
int PrintPreviews(const HostOptions& options) {
  HostProfiles profiles(options.folder, Out());
  Preview preview(profiles);
  int status = 0;
  for (const std::int32_t index : Chosen(options, profiles)) {
    try {
      const ProfileSettings& profile = profiles.At(index);
      Out() << profile.Label() << ", " << profile.gameCode << "\n";
      const MessageList list(MessageFilePath(options.folder, profile.folder));
      if (!PrintMessageTable(Out(), preview, profile, list)) status = 1;
    } catch (const RuntimeError& error) {
      Out() << error.description << "\n";
      status = 1;
    }
  }
  return status;
}

/// 0 when every file is in order, 1 when there is a warning.
int Check(const HostOptions& options) {
  const std::string& folder = options.folder;
  LoadedProfiles loaded = LoadProfiles(folder);
  std::size_t warnings = loaded.problems.size();
  for (const std::string& problem : loaded.problems) Out() << problem << "\n";
  for (const ProfileSettings& profile : loaded.profiles) {
    const std::string path = MessageFilePath(folder, profile.folder);
    std::vector<std::string> found;
    try {
      found = CheckMessageFile(path);
    } catch (const RuntimeError& error) {
      found.push_back(error.description);
    }
    for (const std::string& warning : found) {
      Out() << NativePath(path).string() << ": " << warning << "\n";
    }
    warnings += found.size();
  }
  Out() << loaded.profiles.size() << " message files checked, " << warnings << " warnings\n";
  return warnings == 0 ? 0 : 1;
}

}  // namespace

int main(int argc, char** argv) {
  CLI::App app("Posts chat messages to game servers, round and round.");
  app.set_version_flag("--version", std::to_string(ROTACASTS_VERSION_MAJOR) + "." +
                                        std::to_string(ROTACASTS_VERSION_MINOR) + "." +
                                        std::to_string(ROTACASTS_VERSION_PATCH));
  app.require_subcommand(1);
  const std::map<std::string, std::int64_t> units = {{"ms", 1}, {"s", 1000}, {"m", 60000}};
  HostOptions options;
  int status = 0;
  const auto add = [&](const char* name, const char* help, int (*command)(const HostOptions&)) {
    CLI::App* added = app.add_subcommand(name, help);
    added
        ->add_option_function<std::string>(
            "--host-folder",
            [&options](const std::string& folder) {
              options.folder =
                  std::filesystem::absolute(PathOf(folder)).lexically_normal().string();
            },
            "folder with profiles/ and settings/")
        ->required();
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
  add("preview", "Print what every message would say at this moment", PrintPreviews)
      ->add_option("--profile", options.profiles, "only these profiles");
  add("check", "Look over the message files and warn", Check);
  try {
    app.parse(ProgramArguments(argc, argv));
    return status;
  } catch (const CLI::ParseError& error) {
    return app.exit(error);
  } catch (...) {
    Errors() << "rotacasts-host: " << CurrentRuntimeError().description << "\n";
    return 2;
  }
}
