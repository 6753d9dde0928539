#include "host/profile_settings.h"

#include <algorithm>
#include <filesystem>
#include <map>

#include "base/conversions.h"
#include "base/text.h"
#include "base/word_list.h"
#include "files/native_files.h"
#include "game/game_builds.h"
#include "host/complaint.h"
#include "services/host_folder.h"
#include "siblings/file_layer.h"
#include "siblings/ini_text.h"
#include "siblings/plain_words.h"

namespace rotacasts::host {
namespace {

namespace fs = std::filesystem;

constexpr const char* kSection = "Profile";

std::string Place(const std::string& file, const IniText& ini, const std::string& key) {
  return NativePath(file).string() + ":" + std::to_string(ini.LineOf(kSection, key));
}

/// Reads the keys of a file; every complaint names the file and the line.
class ProfileFile {
 public:
  ProfileFile(const std::string& file, FileLayer& files)
      : file_(file), ini_(IniOf(file, files.Read(file).value_or(""))) {
    const std::vector<std::string_view> sections = ini_.Sections();
    if (std::ranges::any_of(
            sections, [](std::string_view name) { return EqualsIgnoringCase(name, kSection); })) {
      return;
    }
    throw Complaint(Place(file_, ini_, "") + ": there is no section [" + kSection +
                    "]; write that line above the keys");
  }

  /// Empty if the key is missing.
  std::string Optional(const char* key) const {
    const std::string raw = FromWindows1252(ini_.Value(kSection, key).value_or(""));
    return std::string(TrimSpaces(raw));
  }

  std::string Text(const char* key, const std::string& wanted) const {
    std::string text = Optional(key);
    if (text.empty()) Complain(key, "is missing; give " + wanted);
    return text;
  }

  std::string OneOf(const char* key, const std::vector<std::string>& allowed) const {
    const std::string wanted = "one of " + Join(allowed, ", ");
    std::string text = Text(key, wanted);
    if (std::find(allowed.begin(), allowed.end(), text) == allowed.end()) Refuse(key, text, wanted);
    return text;
  }

  std::int32_t Number(const char* key, std::int32_t highest, const std::string& wanted) const {
    const std::string text = Text(key, wanted);
    const double number = IsNumeric(text) ? ToDouble(text) : 0;
    if (number < 1 || number > highest || number != RoundToLong(number)) {
      Refuse(key, text, wanted);
    }
    return RoundToLong(number);
  }

 private:
  [[noreturn]] void Refuse(const std::string& key, const std::string& text,
                           const std::string& wanted) const {
    Complain(key, "is \"" + text + "\"; give " + wanted);
  }

  [[noreturn]] void Complain(const std::string& key, const std::string& what) const {
    throw Complaint(Place(file_, ini_, key) + ": " + key + " " + what);
  }

  const std::string file_;
  const IniText ini_;
};

}  // namespace

std::string PlaceInProfile(const std::string& hostFolder, const std::string& folder,
                           const std::string& key) {
  const std::string file = HostFolder(hostFolder).Description(folder);
  return Place(file, ReadIni(file), key);
}

std::string WhyClosed(const std::string& hostFolder, const std::string& folder) {
  const fs::path path = NativePath(HostFolder(hostFolder).Profiles()) / folder;
  std::error_code problem;
  if (!fs::is_directory(path, problem)) return {};
  const fs::directory_iterator first(path, problem);
  if (!problem) (void)fs::status(path / ".", problem);
  if (!problem) return {};
  return path.string() + ": " + problem.message() + "; let this user enter and read it";
}

bool HasProfileFile(const std::string& hostFolder, const std::string& folder) {
  return MachineFiles().FileExists(HostFolder(hostFolder).Description(folder));
}

ProfileSettings ReadProfile(const std::string& hostFolder, const std::string& folder) {
  MachineFiles files;
  return ReadProfile(hostFolder, folder, files);
}

ProfileSettings ReadProfile(const std::string& hostFolder, const std::string& folder,
                            FileLayer& files) {
  HostFolder(hostFolder).Profile(folder);  // refuses the names that the plugin refuses
  const ProfileFile file(HostFolder(hostFolder).Description(folder), files);
  constexpr std::int32_t kHighestIndex = 32767;  // the timers' indexes have 16 bits
  ProfileSettings profile;
  profile.folder = folder;
  profile.index = file.Number("Index", kHighestIndex, "a whole number from 1 to 32767");
  profile.gameCode = file.OneOf("GameCode", GameCodes());
  profile.process = file.Text("Process", "the game server's process id or program name");
  profile.say = file.Optional("Say");
  if (!profile.say.empty() && file.Optional("Target").empty()) return profile;
  profile.target = file.Number("Target", kHighestPort,
                               "its chat port, from 1 to 65535, or in its place Say and a program");
  return profile;
}

LoadedProfiles LoadProfiles(const std::string& hostFolder) {
  LoadedProfiles loaded;
  std::map<std::int32_t, ProfileSettings> byIndex;
  std::vector<std::string> folders;
  std::error_code problem;
  const fs::path root = NativePath(HostFolder(hostFolder).Profiles());
  for (const fs::directory_entry& entry : fs::directory_iterator(root, problem)) {
    folders.push_back(entry.path().filename().string());
  }
  if (problem) {
    loaded.problems.push_back({{},
                               root.string() + ": " + problem.message() +
                                   "; make it a folder with a folder for each profile"});
  }
  std::sort(folders.begin(), folders.end());
  for (const std::string& folder : folders) {
    if (!HasProfileFile(hostFolder, folder)) {
      if (const std::string why = WhyClosed(hostFolder, folder); !why.empty()) {
        loaded.problems.push_back({folder, why});
      }
      continue;
    }
    try {
      const ProfileSettings profile = ReadProfile(hostFolder, folder);
      const auto [other, added] = byIndex.try_emplace(profile.index, profile);
      if (!added) {
        loaded.problems.push_back({folder, PlaceInProfile(hostFolder, folder, "Index") +
                                               ": the index is taken by " + other->second.Label() +
                                               "; give it another one"});
      }
    } catch (const RuntimeError& error) {
      loaded.problems.push_back({folder, PlainWords(error)});
    }
  }
  for (auto& [index, profile] : byIndex) loaded.profiles.push_back(std::move(profile));
  return loaded;
}

}  // namespace rotacasts::host
