#include "host/new_profile.h"

#include <algorithm>
#include <filesystem>
#include <optional>
#include <set>

#include "base/runtime_error.h"
#include "base/text.h"
#include "base/word_list.h"
#include "files/native_files.h"
#include "game/game_builds.h"
#include "host/complaint.h"
#include "host/profile_settings.h"
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
    throw Complaint("--game-code is \"" + profile.gameCode + "\"; give one of " +
                    Join(codes, ", "));
  }
  if (TrimSpaces(profile.process).empty() || HasLineBreak(profile.process)) {
    throw Complaint("--process is missing; give the game server's program name or process id");
  }
  if (profile.target < 1 || profile.target > kHighestPort) {
    throw Complaint("--target is " + std::to_string(profile.target) +
                    "; give the port of the game server's chat, from 1 to 65535");
  }
}

/// The index that a profile.ini gives, usable or not; nullopt if it cannot be told.
std::optional<std::int32_t> IndexIn(const std::string& description) try {
  const IniText ini(ReadWholeFile(description).value_or(""));
  for (const IniText::Row& row : ini.Rows()) {
    if (EqualsIgnoringCase(row.name, "Index")) return WholeNumber(TrimSpaces(row.rest));
  }
  return std::nullopt;
} catch (const RuntimeError&) {
  return std::nullopt;
}

/// The lowest index that no profile has.
std::int32_t UnusedIndex(const std::string& hostFolder) {
  const HostFolder paths(hostFolder);
  std::set<std::int32_t> used;
  for (const auto& entry : std::filesystem::directory_iterator(NativePath(paths.Profiles()))) {
    used.insert(IndexIn(paths.Description(entry.path().filename().string())).value_or(0));
  }
  std::int32_t index = 1;
  while (used.contains(index)) ++index;
  return index;
}

/// Makes the host folder with the rights that this user's folders have: what it lies in, such as
/// /tmp, may be everybody's.
void MakeRoot(const std::string& hostFolder) {
  std::error_code problem;
  std::filesystem::create_directory(NativePath(hostFolder), problem);
  if (problem) {
    throw RuntimeError(ErrorNumber::PathNotFound, "the folder " + hostFolder + " cannot be made (" +
                                                      problem.message() + "); name another one");
  }
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
  MakeRoot(hostFolder);
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
