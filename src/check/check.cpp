#include "check/check.h"

#include <algorithm>
#include <filesystem>
#include <ostream>
#include <set>

#include "base/conversions.h"
#include "base/text.h"
#include "files/file_exchange.h"
#include "files/native_files.h"
#include "host/kept_files.h"
#include "host/preview.h"
#include "host/profile_settings.h"
#include "machine/process_reader.h"
#include "services/host_folder.h"
#include "siblings/file_layer.h"
#include "siblings/plain_words.h"

namespace rotacasts::host {
namespace {

/// The names of the profile folders, sorted.
std::vector<std::string> ProfileFolders(const std::string& hostFolder) {
  std::vector<std::string> folders;
  std::error_code problem;
  const auto root = NativePath(HostFolder(hostFolder).Profiles());
  for (const auto& entry : std::filesystem::directory_iterator(root, problem)) {
    if (entry.is_directory(problem)) folders.push_back(entry.path().filename().string());
  }
  std::sort(folders.begin(), folders.end());
  return folders;
}

void CheckConfiguration(const std::string& hostFolder, std::vector<std::string>& warnings) {
  const std::string path =
      FindFile(HostFolder(hostFolder).Settings(), HostFolder::kConfiguration, warnings);
  if (path.empty()) return;  // the host creates one when it starts
  FileCheck file(path, warnings);
  file.CheckLines();
  const std::string value =
      FromWindows1252(file.Ini().Value("Settings", "ReportErrors").value_or(""));
  if (IsNumeric(value)) return;
  file.WarnAt("Settings", "ReportErrors",
              "ReportErrors is \"" + value +
                  "\"; write 0, or 1 for a report of each error, below [Settings]");
}

void CheckAdministrators(const std::string& hostFolder, std::vector<std::string>& warnings) {
  const std::string path = HostFolder(hostFolder).Administrators();
  if (!MachineFiles().FileExists(path)) return;  // nobody may sign in to the page
  FileCheck(path, warnings).CheckLines();
}

/// Returns false if the profile's description is there but cannot be read.
bool CheckProfileFolder(const std::string& hostFolder, const std::string& folder,
                        std::vector<std::string>& warnings) {
  const std::string path = HostFolder(hostFolder).Profiles() + "\\" + folder;
  const std::size_t before = warnings.size();
  const std::string description = FindFile(path, HostFolder::kDescription, warnings);
  if (description.empty()) {
    // LoadProfiles tells of a folder that cannot be entered.
    if (warnings.size() == before && WhyClosed(hostFolder, folder).empty()) {
      warnings.push_back(NativePath(path).string() +
                         ": is ignored because it has no profile.ini; write one, or move it away");
    }
    return true;
  }
  FileCheck file(description, warnings);
  file.CheckLines();
  file.CheckKeys("Profile", {"Index", "GameCode", "Process", "Target", "Say"});
  return file.IsReadable();
}

/// Warns about what changes of a message file cannot keep where it is.
void CheckPlace(const std::string& path, std::vector<std::string>& warnings) {
  const std::filesystem::path native = NativePath(path);
  std::error_code problem;
  const auto names = std::filesystem::hard_link_count(native, problem);
  if (!problem && names > 1) {
    warnings.push_back(native.string() +
                       ": has another name elsewhere (a hard link), which keeps " +
                       "the old list when the host changes it; make that a symbolic link");
  }
  const auto folder = std::filesystem::canonical(native, problem).parent_path();
  if (problem || CanExchangeFiles(folder.string())) return;
  warnings.push_back(folder.string() +
                     ": this file system cannot exchange two files: while the host changes a " +
                     "list, its file is missing for a moment, and the next start puts it back " +
                     "after a crash; keep the host folder on a local disk");
}

void CheckMessageFile(const std::string& hostFolder, const ProfileSettings& profile,
                      std::vector<std::string>& warnings) {
  const HostFolder paths(hostFolder);
  const std::string path = paths.MessageFile(profile.folder);
  for (std::string& line : TellOfKeptFiles(paths.Settings(profile.folder))) {
    warnings.push_back(std::move(line));
  }
  const std::size_t before = warnings.size();
  const std::string found =
      FindFile(paths.Settings(profile.folder), HostFolder::kMessageFile, warnings);
  if (!found.empty()) {
    CheckPlace(found, warnings);
    FileCheck file(found, warnings);
    if (file.IsReadable() || !file.Ini().Bytes().empty()) CheckMessages(file);
  } else if (warnings.size() == before) {
    warnings.push_back(NativePath(path).string() +
                       ": there is no such file, so there are no messages; write one, or \"add\" "
                       "them at the console");
  }
}

/// What two profiles wrongly share, with its key in `key`; empty if nothing.
std::string Clash(const ProfileSettings& profile, const ProfileSettings& other, std::string& key) {
  const bool sameTarget = profile.target != 0 && profile.target == other.target;
  const bool isNumber = IsNumeric(profile.process);
  if (sameTarget) {
    key = "Target";
    return "Target " + std::to_string(profile.target) + " is also that of " + other.Label() +
           ": both post to one server; give each its own port";
  }
  const bool areToldApart = !isNumber && profile.target != 0 && other.target != 0;
  if (profile.process != other.process || areToldApart) return {};
  key = "Process";
  return "Process " + profile.process + " is also that of " + other.Label() +
         (isNumber ? ": both read one server; give each its own"
                   : ": they cannot be told apart; give each its Target port or its process id");
}

void CheckClashes(const std::string& hostFolder, const std::vector<ProfileSettings>& profiles,
                  std::vector<std::string>& warnings) {
  for (auto profile = profiles.begin(); profile != profiles.end(); ++profile) {
    for (auto other = profiles.begin(); other != profile; ++other) {
      std::string key;
      const std::string clash = Clash(*profile, *other, key);
      if (clash.empty()) continue;
      warnings.push_back(PlaceInProfile(hostFolder, profile->folder, key) + ": " + clash);
    }
  }
}

void CheckServers(const std::string& hostFolder, std::vector<std::string>& warnings) {
  std::ostream none(nullptr);  // nothing that prints is called
  HostProfiles profiles(hostFolder, none);
  Preview preview(profiles);
  for (const auto& [index, profile] : profiles.All()) {
    const std::string problem = preview.GameOf(profile).problem;
    const auto place = [&, &folder = profile.folder](const char* key) {
      return PlaceInProfile(hostFolder, folder, key) + ": ";
    };
    if (!problem.empty()) warnings.push_back(place("Process") + problem);
    if (!profile.say.empty() || ReceivesUdp(static_cast<std::uint16_t>(profile.target))) continue;
    warnings.push_back(place("Target") + "nobody receives at the port " +
                       std::to_string(profile.target) +
                       " of this machine; start the server, or give its chat port");
  }
}

}  // namespace

Findings CheckHostFolder(const std::string& hostFolder) {
  Findings found;
  CheckConfiguration(hostFolder, found.warnings);
  CheckAdministrators(hostFolder, found.warnings);
  std::set<std::string> unreadable;  // folders whose problem is already in the warnings
  for (const std::string& folder : ProfileFolders(hostFolder)) {
    if (!CheckProfileFolder(hostFolder, folder, found.warnings)) unreadable.insert(folder);
  }
  const LoadedProfiles loaded = LoadProfiles(hostFolder);
  for (const LoadedProfiles::Problem& problem : loaded.problems) {
    if (!unreadable.contains(problem.folder)) found.warnings.push_back(problem.words);
  }
  found.profiles = loaded.profiles.size();
  for (const ProfileSettings& profile : loaded.profiles) {
    CheckMessageFile(hostFolder, profile, found.warnings);
    CheckProfile(hostFolder, profile, found.warnings);
  }
  CheckAccess(hostFolder, loaded.profiles, found.warnings);
  CheckClashes(hostFolder, loaded.profiles, found.warnings);
  if (found.profiles != 0) {
    CheckServers(hostFolder, found.warnings);
  } else {
    found.warnings.push_back(
        NativePath(hostFolder).string() + ": there is no usable profile; " +
        "write profiles/NAME/profile.ini, with Index, GameCode, Process and Target");
  }
  return found;
}

std::vector<std::string> ConvertHostFolder(const std::string& hostFolder) {
  const HostFolder paths(hostFolder);
  std::vector<std::string> files = {paths.Configuration(), paths.Administrators()};
  for (const std::string& folder : ProfileFolders(hostFolder)) {
    files.push_back(paths.Description(folder));
    files.push_back(paths.MessageFile(folder));
  }
  std::vector<std::string> lines;
  for (const std::string& file : files) {
    const std::string name = NativePath(file).string();
    try {
      const std::string copy = ConvertFromUtf8(file);
      if (copy.empty()) continue;
      lines.push_back(name + ": converted; as it was it is kept in " + NativePath(copy).string());
    } catch (const RuntimeError& error) {
      lines.push_back(name + ": not converted: " + PlainWords(error));
    }
  }
  return lines;
}

}  // namespace rotacasts::host
