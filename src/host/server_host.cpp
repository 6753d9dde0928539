#include "host/server_host.h"

#include <algorithm>

#include "host/machine/base64.h"
#include "host/terminal.h"
#include "store/message_file.h"

namespace rotacasts::host {
namespace {

constexpr const char* kNotKnown = "-";

}  // namespace

Variant ServerHost::DataOf(const ProfileSettings& profile) const {
  Variant::Array data = watch_.DataOf(profile);
  data[pdat::kAdministrator] = options_.administrator;
  data[pdat::kSharedLog] = options_.sharedLog;
  const PluginArea area = site_.Area();
  data[pdat::kAreaHeight] = area.height;
  data[pdat::kAreaWidth] = area.width;
  return data;
}

void ServerHost::Load(const ProfileSettings& profile) {
  plugin_.LoadInterface(profile.index, site_.Area().window, DataOf(profile));
  started_.insert(profile.index);
  site_.Shown(profile.index);
}

std::size_t ServerHost::LoadEveryProfile() {
  for (const auto& [index, profile] : watch_.Profiles()) Load(profile);
  return watch_.Profiles().size();
}

void ServerHost::Show(std::int32_t index) {
  Load(watch_.ReadAnew(index));
}

void ServerHost::Hide() {
  plugin_.HideInterface();
  site_.Shown(0);
}

void ServerHost::Unload() {
  plugin_.UnLoadInterface();
  site_.Shown(0);
  started_.clear();
}

void ServerHost::Disable(std::int32_t index) {
  watch_.Profile(index);
  plugin_.DisableProfile(index);
  started_.erase(index);
}

std::string ServerHost::Remote(std::int32_t index, RemoteOperation operation,
                               const Variant& value) {
  return plugin_.Remote(operation, index, DataOf(watch_.Profile(index)), value);
}

std::string ServerHost::Remote(std::int32_t index, const std::string& operation,
                               const Variant& data) {
  const auto* found =
      std::find(std::begin(kRemoteOperations), std::end(kRemoteOperations), operation);
  if (found != std::end(kRemoteOperations)) {
    return Remote(index, static_cast<RemoteOperation>(found - kRemoteOperations), data);
  }
  std::string names;
  for (const char* name : kRemoteOperations) names += std::string(" ") + name;
  throw Complaint(operation + " is no remote operation; there are" + names);
}

void ServerHost::AddMessage(std::int32_t index, const std::string& text) {
  const std::string reply = Remote(index, RemoteOperation::AddMessage, EncodeBase64(text));
  if (reply == "1") {
    out_ << "added at position " << watch_.MessagesOf(watch_.Profile(index)).size() - 1 << "\n";
  } else if (reply == "0") {
    out_ << "not stored: a message is one line of Windows-1252 letters, in a file that can be "
            "written\n";
  }
}

void ServerHost::DeleteMessage(std::int32_t index, std::int32_t position) {
  const std::string text = RequireMessage(index, position);
  const std::string reply = Remote(index, RemoteOperation::DeleteMessage, position);
  if (reply == "1") out_ << "deleted: " << text << "\n";
}

void ServerHost::MoveMessage(std::int32_t index, std::int32_t position, bool up) {
  const std::string text = RequireMessage(index, position);
  const auto operation = up ? RemoteOperation::MoveMessageUp : RemoteOperation::MoveMessageDown;
  const std::string reply = Remote(index, operation, position);
  if (reply == "1") out_ << "moved " << (up ? "up: " : "down: ") << text << "\n";
  if (reply == "0") out_ << "not moved: it is the " << (up ? "first" : "last") << " message\n";
}

void ServerHost::SetOption(std::int32_t index, const char* key, const std::string& value) {
  const bool isSwitch = key == std::string(kEnableKey);
  Remote(index, isSwitch ? RemoteOperation::Enable : RemoteOperation::ChangeInterval, value);
  out_ << key << " is " << watch_.OptionOf(watch_.Profile(index), key) << "\n";
}

std::string ServerHost::RequireMessage(std::int32_t index, std::int32_t position) {
  const ProfileSettings& profile = watch_.Profile(index);
  watch_.RequireNumbering(profile);
  const std::vector<std::string> messages = watch_.MessagesOf(profile);
  if (position >= 0 && static_cast<std::size_t>(position) < messages.size()) {
    return messages[static_cast<std::size_t>(position)];
  }
  throw Complaint("there is no message at position " + std::to_string(position) + "; \"messages " +
                  std::to_string(index) + "\" lists those there are");
}

std::string ServerHost::MessageAt(const ProfileSettings& profile, ProfileWatch::Game game,
                                  std::int32_t position) {
  const std::vector<std::string> messages = watch_.MessagesOf(profile);
  if (messages.empty()) return "(no messages)";
  auto at = static_cast<std::size_t>(position);
  if (at >= messages.size()) at = 0;
  const std::string says = watch_.SaysNow(profile.index, game, messages[at]);
  return std::to_string(at) + ": " + (says == messages[at] ? says : messages[at] + " -> " + says);
}

std::vector<std::string> ServerHost::StatusRow(const ProfileSettings& profile) {
  constexpr const char* kGames[] = {"unreachable", "idle", "running"};
  auto progress = plugin_.ProgressOf(profile.index);
  if (!progress && !started_.contains(profile.index)) {
    progress = HostedPlugin::Progress();  // a stopped one begins anew
  }
  const bool isStopped = progress && !progress->isStarted;
  const ProfileWatch::Game game = watch_.GameOf(profile.index);
  return {std::to_string(profile.index),
          profile.folder,
          profile.gameCode,
          std::string(isStopped ? "stopped, game " : "") + kGames[static_cast<int>(game)],
          watch_.OptionOf(profile, kEnableKey) == "1" ? "on" : "off",
          watch_.OptionOf(profile, kIntervalKey) + " min",
          progress ? std::to_string(progress->elapsedTicks) : kNotKnown,
          progress ? MessageAt(profile, game, progress->nextMessage) : kNotKnown};
}

void ServerHost::PrintStatus() {
  TextTable table(
      {"Profile", "Folder", "Code", "Game", "Switch", "Every", "Ticks", "Next message"});
  for (const auto& [index, profile] : watch_.Profiles()) {
    try {
      table.Add(StatusRow(profile));
    } catch (const RuntimeError& error) {
      table.Add({std::to_string(index), profile.folder, profile.gameCode, error.description});
    }
  }
  table.Print(out_);
  if (const auto window = plugin_.ShownWindow()) {
    out_ << "The window shows profile " << window->profile << "; every profile goes by its switch ("
         << (window->isSwitchedOn ? "on" : "off") << ") and its interval (" << window->interval
         << " min).\n";
  }
}

}  // namespace rotacasts::host
