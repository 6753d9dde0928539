#include "host/server_host.h"

#include <algorithm>
#include <sstream>

#include "broadcast/placeholders.h"
#include "host/base64.h"
#include "host/complaint.h"
#include "host/host_file_system.h"
#include "host/native_files.h"
#include "host/text_table.h"
#include "platform/text.h"
#include "store/profile_paths.h"
#include "ui/layout.h"

namespace rotacasts::host {
namespace {

// The host's plugin area: what the settings window needs, and 28 pixels for the host's own heading.
constexpr std::int32_t kAreaWidth = layout::kClientWidth;              // twips
constexpr std::int32_t kAreaHeight = layout::kClientHeight + 28 * 15;  // twips
constexpr forms::WindowHandle kHostWindow = 1;

/// Makes what every host folder needs. Error 76 when the folder itself is missing.
std::string Prepared(const std::string& folder) {
  HostFileSystem files;
  if (!files.FolderExists(folder)) {
    throw RuntimeError(ErrorNumber::PathNotFound, folder + "; make it, or name another folder");
  }
  if (folder.find('\\') != std::string::npos) {
    throw RuntimeError(ErrorNumber::PathNotFound, folder + "; a name with \"\\\" cannot be used");
  }
  const std::string settings = folder + "\\settings";
  if (!files.FolderExists(settings)) files.CreateFolder(settings);
  if (!files.FileExists(settings + "\\config.ini")) {
    ReplaceFile(settings + "\\config.ini", "[Settings]\r\nReportErrors=0\r\n");
  }
  return folder;
}

void PrintBox(std::ostream& out, const std::string& text, const std::string& title) {
  out << "[" << title << "]\n";
  std::istringstream lines(ReplaceAll(text, "\r\n", "\n"));
  for (std::string line; std::getline(lines, line);) {
    if (!line.empty()) out << "  " << line << "\n";
  }
  out << std::flush;
}

}  // namespace

ServerHost::ServerHost(const HostOptions& options, std::ostream& out)
    : out_(out),
      options_(options),
      folder_(Prepared(options.folder)),
      timers_(options.minute),
      toolkit_(timers_),
      platform_(folder_),
      state_(platform_.Bundle(toolkit_)),
      plugin_(state_) {
  toolkit_.onMessageBox = [this](const std::string& text, const std::string& title) {
    PrintBox(out_, text, title);
  };
  HostFileSystem files;
  LoadedProfiles loaded = LoadProfiles(folder_);
  for (const std::string& problem : loaded.problems) out_ << "skipped: " << problem << "\n";
  for (ProfileSettings& profile : loaded.profiles) {
    const std::string settings = folder_ + "\\profiles\\" + profile.folder + "\\settings";
    if (!files.FolderExists(settings)) files.CreateFolder(settings);
    handles_[profile.index] = platform_.Processes().Register(profile.process, profile.Label());
    profiles_.emplace(profile.index, std::move(profile));
  }
}

const ProfileSettings& ServerHost::Profile(std::int32_t index) const {
  const auto found = profiles_.find(index);
  if (found != profiles_.end()) return found->second;
  throw RuntimeError(
      ErrorNumber::InvalidProcedureCall,
      "there is no profile " + std::to_string(index) + "; \"status\" lists those there are");
}

Variant ServerHost::DataOf(const ProfileSettings& profile) {
  Variant::Array data(pdat::kSize);
  data[pdat::kData0] = profile.folder;
  data[pdat::kGameCode] = profile.gameCode;
  data[pdat::kProcessHandle] = handles_.at(profile.index);
  data[pdat::kMessageTarget] = profile.target;
  data[pdat::kProfileFolder] = profile.folder;
  data[pdat::kAdministrator] = options_.administrator;
  data[pdat::kSharedLog] = options_.sharedLog;
  data[pdat::kAreaHeight] = kAreaHeight;
  data[pdat::kAreaWidth] = kAreaWidth;
  return data;
}

void ServerHost::LoadEveryProfile() {
  for (const auto& [index, profile] : profiles_) {
    plugin_.LoadInterface(index, kHostWindow, DataOf(profile));
  }
}

void ServerHost::Show(std::int32_t index) {
  const ProfileSettings known = Profile(index);
  ProfileSettings fresh = ReadProfile(folder_, known.folder);
  if (fresh.index != index) {
    throw Complaint(known.Label() + " has the index " + std::to_string(fresh.index) +
                    " now; start the host anew to use it");
  }
  platform_.Processes().Change(handles_.at(index), fresh.process, fresh.Label());
  profiles_[index] = std::move(fresh);
  plugin_.LoadInterface(index, kHostWindow, DataOf(profiles_[index]));
}

void ServerHost::Disable(std::int32_t index) {
  Profile(index);
  plugin_.DisableProfile(index);
}

std::string ServerHost::Remote(std::int32_t index, const std::string& operation,
                               const Variant& data) {
  struct Row {
    const char* name;
    std::string (clsPlugin::*call)(std::int32_t, const Variant&, const Variant&);
  };
  static constexpr Row kOperations[] = {
      {"GetMessagesRem", &clsPlugin::GetMessagesRem},
      {"AddMessageRem", &clsPlugin::AddMessageRem},
      {"EnableRTRem", &clsPlugin::EnableRTRem},
      {"ChangeIntervalRem", &clsPlugin::ChangeIntervalRem},
      {"MoveMessageDownRem", &clsPlugin::MoveMessageDownRem},
      {"MoveMessageUpRem", &clsPlugin::MoveMessageUpRem},
      {"DeleteMessageRem", &clsPlugin::DeleteMessageRem},
  };
  std::string names;
  for (const Row& row : kOperations) {
    if (operation == row.name) return (plugin_.*row.call)(index, DataOf(Profile(index)), data);
    names += std::string(" ") + row.name;
  }
  throw Complaint(operation + " is no remote operation; there are" + names);
}

void ServerHost::AddMessage(std::int32_t index, const std::string& text) {
  const std::string reply = Remote(index, "AddMessageRem", EncodeBase64(text));
  if (reply == "1") {
    out_ << "added at position " << MessagesOf(Profile(index)).size() - 1 << "\n";
  } else if (reply == "0") {
    out_ << "not stored: a message is one line of Windows-1252 letters, in a file that can be "
            "written\n";
  }
}

void ServerHost::DeleteMessage(std::int32_t index, std::int32_t position) {
  const std::string text = RequireMessage(index, position);
  const std::string reply = Remote(index, "DeleteMessageRem", position);
  if (reply == "1") out_ << "deleted: " << text << "\n";
}

void ServerHost::MoveMessage(std::int32_t index, std::int32_t position, bool up) {
  const std::string text = RequireMessage(index, position);
  const std::string reply = Remote(index, up ? "MoveMessageUpRem" : "MoveMessageDownRem", position);
  if (reply == "1") out_ << "moved " << (up ? "up: " : "down: ") << text << "\n";
  if (reply == "0") out_ << "not moved: it is the " << (up ? "first" : "last") << " message\n";
}

void ServerHost::SetOption(std::int32_t index, const char* key, const std::string& value) {
  Remote(index, key == std::string(kEnableKey) ? "EnableRTRem" : "ChangeIntervalRem", value);
  out_ << key << " is " << StoredOption(Profile(index), key) << "\n";
}

std::string ServerHost::RequireMessage(std::int32_t index, std::int32_t position) {
  const std::vector<std::string> messages = MessagesOf(Profile(index));
  if (position >= 0 && static_cast<std::size_t>(position) < messages.size()) {
    return messages[static_cast<std::size_t>(position)];
  }
  throw Complaint("there is no message at position " + std::to_string(position) + "; \"messages " +
                  std::to_string(index) + "\" lists those there are");
}

std::string ServerHost::StoredOption(const ProfileSettings& profile, const char* key) const {
  return FromWindows1252(ReadIni(MessageFileOf(profile)).Value(kOptionsSection, key).value_or(""));
}

std::string ServerHost::MessageFileOf(const ProfileSettings& profile) const {
  return MessageFilePath(folder_, profile.folder);
}

std::vector<std::string> ServerHost::MessagesOf(const ProfileSettings& profile) const {
  const IniText ini = ReadIni(MessageFileOf(profile));
  std::vector<std::string> messages;
  for (const IniText::Line& line : ini.Lines(kMessagesSection)) {
    messages.push_back(FromWindows1252(line.value));
  }
  return messages;
}

ServerHost::Game ServerHost::GameOf(std::int32_t index) {
  if (!state_.game.HasMemoryMap(index)) return Game::UnknownBuild;
  try {
    return state_.game.IsGameRunning(index) ? Game::Running : Game::Idle;
  } catch (const RuntimeError& error) {
    out_ << error.description << "\n";
    return Game::Unreachable;
  }
}

std::string ServerHost::SaysNow(std::int32_t index, Game game, const std::string& message) {
  const bool needsServer = IsPlaceholder(message);
  if (needsServer && game == Game::UnknownBuild) return "(cannot tell: no such game build)";
  if (needsServer && game == Game::Unreachable) return "(cannot tell: no game server)";
  const std::string text = state_.broadcast.LiveText(index, message);
  return text.empty() ? "(nothing: it is skipped)" : text;
}

void ServerHost::PrintMessageTable(const ProfileSettings& profile) {
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

void ServerHost::PrintMessages(std::int32_t index) {
  const ProfileSettings& profile = Profile(index);
  PrintMessageTable(profile);
  out_ << kEnableKey << " " << StoredOption(profile, kEnableKey) << ", " << kIntervalKey << " "
       << StoredOption(profile, kIntervalKey) << "\n";
}

void ServerHost::PrintPreview(std::int32_t index) {
  const ProfileSettings& profile = Profile(index);
  state_.profiles.SetProfileData(index, DataOf(profile));
  out_ << profile.Label() << ", " << profile.gameCode << "\n";
  PrintMessageTable(profile);
}

std::string ServerHost::NextMessageOf(const ProfileSettings& profile, Game game) {
  const std::vector<std::string> messages = MessagesOf(profile);
  if (messages.empty()) return "(no messages)";
  auto position = static_cast<std::size_t>(state_.tables.NextMessage(profile.index));
  if (position >= messages.size()) position = 0;
  const std::string& message = messages[position];
  const std::string says = SaysNow(profile.index, game, message);
  return std::to_string(position) + ": " + (says == message ? says : message + " -> " + says);
}

std::vector<std::string> ServerHost::StatusRow(const ProfileSettings& profile) {
  constexpr const char* kGames[] = {"unknown build", "unreachable", "idle", "running"};
  std::vector<std::string> row = {std::to_string(profile.index), profile.folder, profile.gameCode};
  const auto options = {std::string(StoredOption(profile, kEnableKey) == "1" ? "on" : "off"),
                        StoredOption(profile, kIntervalKey) + " min"};
  const auto window = state_.window.IfLoaded();
  const auto element = static_cast<std::int16_t>(profile.index);
  if (!window || !window->Timers().Elements().contains(element)) {
    row.emplace_back("stopped");
    row.insert(row.end(), options);
    return row;
  }
  const Game game = GameOf(profile.index);
  row.emplace_back(kGames[static_cast<int>(game)]);
  row.insert(row.end(), options);
  row.push_back(std::to_string(state_.tables.ElapsedTicks(profile.index)));
  row.push_back(NextMessageOf(profile, game));
  return row;
}

void ServerHost::PrintStatus() {
  TextTable table(
      {"Profile", "Folder", "Code", "Game", "Switch", "Every", "Ticks", "Next message"});
  for (const auto& [index, profile] : profiles_) {
    try {
      table.Add(StatusRow(profile));
    } catch (const RuntimeError& error) {
      table.Add({std::to_string(index), profile.folder, profile.gameCode, error.description});
    }
  }
  table.Print(out_);
  if (const auto window = state_.window.IfLoaded()) {
    out_ << "The window shows profile " << state_.tables.currentWindowProfile
         << "; every profile goes by its switch ("
         << (window->chkAuto().Value() == 1 ? "on" : "off") << ") and its interval ("
         << window->txtInterval().Text() << " min).\n";
  }
}

}  // namespace rotacasts::host
