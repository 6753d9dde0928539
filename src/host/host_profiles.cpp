#include "host/host_profiles.h"

#include <algorithm>

#include "files/native_files.h"
#include "host/complaint.h"
#include "host/kept_files.h"
#include "services/host_folder.h"
#include "services/profile_data.h"
#include "services/profile_tables.h"
#include "siblings/file_layer.h"
#include "siblings/plain_words.h"

namespace rotacasts::host {
namespace {

/// Returns the folder. Errors: 76 if it is missing.
const std::string& Existing(const std::string& folder) {
  if (!MachineFiles().FolderExists(folder)) {
    throw RuntimeError(ErrorNumber::PathNotFound,
                       "there is no folder " + folder + "; make it, or name another one");
  }
  if (NativePath(folder).string() != folder) {  // a "\" in it would mean another folder
    throw RuntimeError(ErrorNumber::PathNotFound,
                       "a folder whose name has a \"\\\" cannot be used: " + folder);
  }
  return folder;
}

}  // namespace

HostProfiles::HostProfiles(const std::string& hostFolder, std::ostream& out)
    : out_(out), folder_(Existing(hostFolder)), platform_(folder_) {
  platform_.Processes().onNews = [this](ServerNews news, const std::string& words) {
    TellOfServer(news, words);
  };
  LoadedProfiles loaded = LoadProfiles(folder_);
  skipped_ = std::move(loaded.problems);
  for (ProfileSettings& profile : loaded.profiles) Use(std::move(profile));
}

bool HostProfiles::PrintSkipped() const {
  for (const auto& problem : skipped_) out_ << "skipped: " << problem.words << "\n";
  out_ << std::flush;
  return skipped_.empty();
}

void HostProfiles::TellOfServer(ServerNews news, const std::string& words) const {
  out_ << words << "\n" << std::flush;
  if (news != ServerNews::Gone) Record("Server", words);  // the plugin records the failed read
}

void HostProfiles::Use(ProfileSettings profile) {
  GameProcess process{profile.process, static_cast<std::uint16_t>(profile.target), profile.Label()};
  const auto handle = handles_.find(profile.index);
  if (handle == handles_.end()) {
    handles_[profile.index] = platform_.Processes().Register(std::move(process));
  } else {
    platform_.Processes().Change(handle->second, std::move(process));
  }
  platform_.GetChat().SetProgram(profile.index, profile.say);
  profiles_.insert_or_assign(profile.index, std::move(profile));
}

void HostProfiles::MakeWhatIsMissing() {
  if (profiles_.empty()) return;
  MakeSettingsFolder(HostFolder(folder_).Settings());
  const std::string config = HostFolder(folder_).Configuration();
  if (!MachineFiles().FileExists(config)) {
    ReplaceFile(config, "[Settings]\r\nReportErrors=0\r\n");
  }
  std::erase_if(profiles_,
                [this](const auto& entry) { return !MakeSettingsFolderOf(entry.second); });
}

void HostProfiles::MakeSettingsFolder(const std::string& settings) const {
  MachineFiles files;
  if (!files.FolderExists(settings)) files.CreateFolder(settings);
  for (const std::string& line : TidyLeftovers(settings)) out_ << line << "\n";
  for (const std::string& line : TellOfKeptFiles(settings)) out_ << line << "\n";
}

bool HostProfiles::MakeSettingsFolderOf(const ProfileSettings& profile) try {
  MakeSettingsFolder(HostFolder(folder_).Settings(profile.folder));
  return true;
} catch (const RuntimeError& error) {
  out_ << "skipped: " << profile.Label()
       << ": its settings folder cannot be made: " << PlainWords(error);
  if (error.number == static_cast<std::int32_t>(ErrorNumber::PermissionDenied)) {
    out_ << "; let the host's user write "
         << NativePath(HostFolder(folder_).Profile(profile.folder)).string();
  }
  out_ << "\n" << std::flush;
  return false;
}

const ProfileSettings& HostProfiles::At(std::int32_t index) const {
  const auto found = profiles_.find(index);
  if (found != profiles_.end()) return found->second;
  throw Complaint("there is no profile " + std::to_string(index) +
                  "; \"status\" lists those there are, \"reload\" looks for new ones");
}

const ProfileSettings& HostProfiles::Reread(std::int32_t index) {
  const ProfileSettings known = At(index);
  ProfileSettings fresh = ReadProfile(folder_, known.folder);
  if (fresh.index != index) {
    throw Complaint(known.Label() + " has the index " + std::to_string(fresh.index) +
                    " now; \"reload\" takes that over");
  }
  Use(std::move(fresh));
  return profiles_.at(index);
}

bool HostProfiles::IsStillDescribed(const ProfileSettings& profile) const try {
  return ReadProfile(folder_, profile.folder).index == profile.index;
} catch (const RuntimeError&) {  // broken or missing
  return HasProfileFile(folder_, profile.folder) || !WhyClosed(folder_, profile.folder).empty();
}

HostProfiles::Changes HostProfiles::RereadAll() {
  Changes changes;
  platform_.Processes().LookAgain();
  LoadedProfiles loaded = LoadProfiles(folder_);
  for (const auto& problem : loaded.problems) out_ << "not used: " << problem.words << "\n";
  for (ProfileSettings& profile : loaded.profiles) {
    const auto known = profiles_.find(profile.index);
    if (known != profiles_.end() && known->second == profile) continue;
    if (!MakeSettingsFolderOf(profile)) continue;
    (known == profiles_.end() ? changes.added : changes.changed).push_back(profile.index);
    Use(std::move(profile));
  }
  for (const auto& [index, profile] : profiles_) {
    if (!IsStillDescribed(profile)) changes.removed.push_back(index);
  }
  for (const std::int32_t index : changes.removed) profiles_.erase(index);
  return changes;
}

void HostProfiles::Record(std::string procedure, const std::string& words) const try {
  RuntimeError note(0, words);
  std::int32_t line = 0;
  MachineFiles layer;
  IniFiles files(layer);
  HostUtilityComponent(folder_, SystemClock(), files)
      .LogError("rotacasts-host", procedure, note, line);
} catch (const RuntimeError&) {  // it was already shown
}

HostValue::Array HostProfiles::DataOf(const ProfileSettings& profile) const {
  HostValue::Array data(pdat::kSize);
  data[pdat::kData0] = profile.folder;
  data[pdat::kGameCode] = profile.gameCode;
  data[pdat::kProcessHandle] = handles_.at(profile.index);
  data[pdat::kMessageTarget] = profile.target;
  data[pdat::kProfileFolder] = profile.folder;
  return data;
}

}  // namespace rotacasts::host
