#include "host/profile_watch.h"

#include "base/text.h"
#include "broadcast/placeholders.h"
#include "host/components/host_file_system.h"
#include "host/components/ini_text.h"
#include "host/machine/native_files.h"
#include "host/terminal.h"
#include "store/profile_paths.h"

namespace rotacasts::host {
namespace {

/// The folder itself. Error 76 when it is missing.
const std::string& Existing(const std::string& folder) {
  if (!HostFileSystem().FolderExists(folder)) {
    throw RuntimeError(ErrorNumber::PathNotFound, folder + "; make it, or name another folder");
  }
  if (NativePath(folder).string() != folder) {  // spelt with "\" it is another one
    throw RuntimeError(ErrorNumber::PathNotFound, folder + "; a name with \"\\\" cannot be used");
  }
  return folder;
}

void MakeSettingsFolder(const std::string& folder) {
  HostFileSystem files;
  const std::string settings = folder + "\\settings";
  if (!files.FolderExists(settings)) files.CreateFolder(settings);
}

class WatchUtilityComponent final : public HostUtilityComponent {
 public:
  using HostUtilityComponent::HostUtilityComponent;
  /// Fails: the error is then shown, and neither logged nor reported.
  void LogError(const std::string&, std::string&, RuntimeError&, std::int32_t&) override {
    throw RuntimeError(ErrorNumber::PermissionDenied);
  }
};

class WatchComponents final : public ComponentFactory {
 public:
  WatchComponents(HostPlatform& host, std::string folder)
      : host_(host), folder_(std::move(folder)) {}

  std::unique_ptr<UtilityComponent> CreateUtility() override {
    return std::make_unique<WatchUtilityComponent>(folder_, host_.Clock());
  }
  std::unique_ptr<MemoryComponent> CreateMemory() override { return host_.CreateMemory(); }
  std::unique_ptr<FileSystemObject> CreateFileSystem() override { return host_.CreateFileSystem(); }

 private:
  HostPlatform& host_;
  const std::string folder_;
};

}  // namespace

ProfileWatch::ProfileWatch(const std::string& hostFolder, std::ostream& out)
    : out_(out),
      folder_(Existing(hostFolder)),
      toolkit_(timers_),
      platform_(folder_),
      components_(std::make_unique<WatchComponents>(platform_, folder_)),
      state_({platform_, *components_, platform_.Clock(), toolkit_}) {
  toolkit_.onMessageBox = [this](const std::string& text, const std::string& title) {
    PrintBox(out_, text, title);
  };
  LoadedProfiles loaded = LoadProfiles(folder_);
  for (const std::string& problem : loaded.problems) out_ << "skipped: " << problem << "\n";
  for (ProfileSettings& profile : loaded.profiles) {
    handles_[profile.index] = platform_.Processes().Register(profile.process, profile.Label());
    state_.profiles.SetProfileData(profile.index, DataOf(profile));
    profiles_.emplace(profile.index, std::move(profile));
  }
}

void ProfileWatch::MakeWhatIsMissing() {
  MakeSettingsFolder(folder_);
  const std::string config = folder_ + "\\settings\\config.ini";
  if (!HostFileSystem().FileExists(config)) {
    ReplaceFile(config, "[Settings]\r\nReportErrors=0\r\n");
  }
  std::erase_if(profiles_, [this](const auto& entry) {
    const ProfileSettings& profile = entry.second;
    try {
      MakeSettingsFolder(ProfileFolderPath(folder_, profile.folder));
      return false;
    } catch (const RuntimeError& error) {
      out_ << "skipped: " << profile.Label()
           << ": its settings folder cannot be made: " << error.description << "\n";
      return true;
    }
  });
}

const ProfileSettings& ProfileWatch::Profile(std::int32_t index) const {
  const auto found = profiles_.find(index);
  if (found != profiles_.end()) return found->second;
  throw RuntimeError(
      ErrorNumber::InvalidProcedureCall,
      "there is no profile " + std::to_string(index) + "; \"status\" lists those there are");
}

const ProfileSettings& ProfileWatch::ReadAnew(std::int32_t index) {
  const ProfileSettings known = Profile(index);
  ProfileSettings fresh = ReadProfile(folder_, known.folder);
  if (fresh.index != index) {
    throw Complaint(known.Label() + " has the index " + std::to_string(fresh.index) +
                    " now; start the host anew to use it");
  }
  platform_.Processes().Change(handles_.at(index), fresh.process, fresh.Label());
  state_.profiles.SetProfileData(index, DataOf(fresh));
  return profiles_[index] = std::move(fresh);
}

Variant::Array ProfileWatch::DataOf(const ProfileSettings& profile) const {
  Variant::Array data(pdat::kSize);
  data[pdat::kData0] = profile.folder;
  data[pdat::kGameCode] = profile.gameCode;
  data[pdat::kProcessHandle] = handles_.at(profile.index);
  data[pdat::kMessageTarget] = profile.target;
  data[pdat::kProfileFolder] = profile.folder;
  return data;
}

std::string ProfileWatch::MessageFileOf(const ProfileSettings& profile) const {
  return MessageFilePath(folder_, profile.folder);
}

std::vector<std::string> ProfileWatch::MessagesOf(const ProfileSettings& profile) const {
  const IniText ini = ReadIni(MessageFileOf(profile));
  std::vector<std::string> messages;
  for (const IniText::Line& line : ini.Lines(kMessagesSection)) {
    messages.push_back(FromWindows1252(line.value));
  }
  return messages;
}

void ProfileWatch::RequireNumbering(const ProfileSettings& profile) const {
  const IniText ini = ReadIni(MessageFileOf(profile));
  std::int32_t position = 0;
  for (const IniText::Line& line : ini.Lines(kMessagesSection)) {
    const std::string due = std::to_string(position + 1);
    if (line.key != due) {
      throw Complaint("the message \"" + FromWindows1252(line.value) + "\" at position " +
                      std::to_string(position) + " has the key " + FromWindows1252(line.key) +
                      " instead of " + due +
                      ", so a position could mean another message; number the keys from 1 in " +
                      NativePath(MessageFileOf(profile)).string() + " and try again");
    }
    ++position;
  }
}

std::string ProfileWatch::OptionOf(const ProfileSettings& profile, const char* key) const {
  return FromWindows1252(ReadIni(MessageFileOf(profile)).Value(kOptionsSection, key).value_or(""));
}

ProfileWatch::Game ProfileWatch::GameOf(std::int32_t index) {
  try {
    return state_.game.IsGameRunning(index) ? Game::Running : Game::Idle;
  } catch (const RuntimeError& error) {
    out_ << error.description << "\n";
    return Game::Unreachable;
  }
}

std::string ProfileWatch::SaysNow(std::int32_t index, Game game, const std::string& message) {
  if (IsPlaceholder(message) && game == Game::Unreachable) return "(cannot tell: no game server)";
  const std::string text = state_.broadcast.LiveText(index, message);
  return text.empty() ? "(nothing: it is skipped)" : text;
}

void ProfileWatch::PrintMessageTable(const ProfileSettings& profile) {
  const std::vector<std::string> messages = MessagesOf(profile);
  if (messages.empty()) {
    out_ << profile.Label() << " has no messages in " << NativePath(MessageFileOf(profile)).string()
         << "\n";
    return;
  }
  const Game game = GameOf(profile.index);
  TextTable table({"Position", "Message", "Says now"});
  for (std::size_t i = 0; i < messages.size(); ++i) {
    table.Add({std::to_string(i), messages[i], SaysNow(profile.index, game, messages[i])});
  }
  table.Print(out_);
}

void ProfileWatch::PrintMessages(std::int32_t index) {
  const ProfileSettings& profile = Profile(index);
  PrintMessageTable(profile);
  out_ << kEnableKey << " " << OptionOf(profile, kEnableKey) << ", " << kIntervalKey << " "
       << OptionOf(profile, kIntervalKey) << "\n";
}

void ProfileWatch::PrintPreview(std::int32_t index) {
  const ProfileSettings& profile = Profile(index);
  out_ << profile.Label() << ", " << profile.gameCode << "\n";
  PrintMessageTable(profile);
}

}  // namespace rotacasts::host
