#include "host/new_profile.h"

#include <algorithm>
#include <filesystem>
#include <set>

#include "base/conversions.h"
#include "base/text.h"
#include "game/game_builds.h"
#include "host/complaint.h"
#include "machine/native_files.h"
#include "services/host_folder.h"
#include "siblings/file_layer.h"
#include "siblings/ini_text.h"
#include "store/options.h"

namespace rotacasts::host {
namespace {

std::string TwoMessages() {
  return std::string("[Messages]\r\n1=Welcome! Be fair, have fun.\r\n2={ShowNextMap}\r\n") +
         "[Options]\r\n" + kEnable.key + "=" + kEnable.initial + "\r\n" + kInterval.key + "=" +
         kInterval.initial + "\r\n";
}

constexpr std::int32_t kHighestPort = 65535;

void RequireName(const std::string& name) {
  const bool isFolderName = !name.empty() && name[0] != '.' && IsValidUtf8(name) &&
                            name.find_first_of("/\\:*?\"<>|") == name.npos &&
                            std::none_of(name.begin(), name.end(), IsControl);
  if (isFolderName) return;
  throw Complaint("\"" + name +
                  "\" cannot be the name of the profile's folder; give one like alpha");
}

void RequireWhole(const NewProfile& profile) {
  RequireName(profile.name);
  const std::vector<std::string> codes = GameCodes();
  if (std::find(codes.begin(), codes.end(), profile.gameCode) == codes.end()) {
    std::string all;
    for (const std::string& code : codes) all += (all.empty() ? "" : ", ") + code;
    throw Complaint("--game-code is \"" + profile.gameCode + "\"; give one of " + all);
  }
  if (TrimSpaces(profile.process).empty() || HasLineBreak(profile.process)) {
    throw Complaint("--process is missing; give the game server's program name or process id");
  }
  if (profile.target < 1 || profile.target > kHighestPort) {
    throw Complaint("--target is " + std::to_string(profile.target) +
                    "; give the port of the game server's chat, from 1 to 65535");
  }
}

/// The lowest index that no profile has; also none that cannot be used yet.
std::int32_t UnusedIndex(const std::string& hostFolder) {
  const HostFolder paths(hostFolder);
  std::set<std::int32_t> used;
  for (const auto& entry : std::filesystem::directory_iterator(NativePath(paths.Profiles()))) {
    const auto bytes = ReadWholeFile(paths.Description(entry.path().filename().string()));
    const IniText ini(bytes.value_or(""));
    for (const IniText::Row& row : ini.Rows()) {
      const std::string text(row.rest);
      if (EqualsIgnoringCase(row.name, "Index") && IsNumeric(text))
        used.insert(RoundToLong(ToDouble(text)));
    }
  }
  std::int32_t index = 1;
  while (used.contains(index)) ++index;
  return index;
}

void MakeFolder(const std::string& path) {
  if (!MachineFiles().FolderExists(path)) MachineFiles().CreateFolder(path);
}

std::string MakeFile(const std::string& path, const std::string& text) {
  ReplaceFile(path, text);
  return NativePath(path).string();
}

}  // namespace

MadeProfile MakeProfile(const std::string& hostFolder, const NewProfile& profile) {
  RequireWhole(profile);
  const HostFolder paths(hostFolder);
  const std::string description = paths.Description(profile.name);
  if (MachineFiles().FileExists(description)) {
    throw Complaint(NativePath(description).string() +
                    " is there already; give another name, or edit that one");
  }
  std::filesystem::create_directory(NativePath(hostFolder));  // with the rights of this user's own
  MakeFolder(paths.Profiles());
  MadeProfile made{UnusedIndex(hostFolder), {}};
  MakeFolder(paths.Profile(profile.name));
  MakeFolder(paths.Settings(profile.name));
  if (!MachineFiles().FileExists(paths.MessageFile(profile.name))) {
    made.files.push_back(MakeFile(paths.MessageFile(profile.name), TwoMessages()));
  }
  // Last: a host that reads the folder at this moment finds all of the profile or nothing.
  made.files.push_back(
      MakeFile(description, "[Profile]\r\nIndex=" + std::to_string(made.index) + "\r\nGameCode=" +
                                profile.gameCode + "\r\nProcess=" + ToWindows1252(profile.process) +
                                "\r\nTarget=" + std::to_string(profile.target) + "\r\n"));
  return made;
}

}  // namespace rotacasts::host
