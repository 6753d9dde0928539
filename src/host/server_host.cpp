#include "host/server_host.h"

#include <algorithm>

#include "base/text.h"
#include "base/word_list.h"
#include "host/complaint.h"
#include "host/message_hints.h"
#include "machine/base64.h"
#include "plugin/remote_operations.h"
#include "services/host_folder.h"
#include "services/profile_tables.h"
#include "siblings/plain_words.h"
#include "store/list_commands.h"

namespace rotacasts::host {
namespace {

/// The capacity of a UDP datagram over IPv4.
constexpr std::size_t kLongestMessage = 65507;

constexpr const char* kCannotBeWritten = "the file cannot be written";

[[noreturn]] void RaiseUnchanged(const char* what, const HostedPlugin::Reply& reply,
                                 const std::string& likely) {
  const std::string reasons = Join(reply.problems, "; ");
  throw Complaint(std::string(what) + ": " + (reasons.empty() ? likely : reasons));
}

/// The outcome of a successful change, with any problems.
std::string Done(std::string words, const HostedPlugin::Reply& reply) {
  for (const std::string& problem : reply.problems) words += "\nbut " + problem;
  return words;
}

/// What the writer of an added message should know.
std::string HintsAfter(const std::string& text) {
  std::string words;
  for (const std::string& hint : HintsOn(text)) words += "\nbut it " + hint;
  return words;
}

/// For a text that was not stored and of which the plugin gives no reason.
std::string WhyNotStored(const std::string& text) try {
  if (ToWindows1252(text).find_first_of("\r\n") == std::string::npos) {
    return "its file cannot be read or written at this moment; try again";
  }
  return "a message is one line; remove the line break";
} catch (const RuntimeError& error) {  // it names the letter
  return PlainWords(error);
}

/// Where an added text stands now; empty if that is not known.
std::string PlaceOf(const std::string& text, const std::optional<MessageList>& list) {
  for (std::size_t number = list ? list->messages.size() : 0; number > 0; --number) {
    if (list->messages[number - 1].text == text) return " as message " + std::to_string(number);
  }
  return {};
}

void RefuseLong(const std::string& text) {
  if (text.size() <= kLongestMessage) return;
  throw Complaint("the message has " + std::to_string(text.size()) + " bytes, more than the " +
                  std::to_string(kLongestMessage) + " of one datagram; give a shorter one");
}

}  // namespace

const RemoteOperation& RemoteOperationOf(std::string_view name) {
  std::string names;
  for (const RemoteOperation& operation : kRemoteOperations) {
    if (operation.name == name) return operation;
    names.append(" ").append(operation.name);
  }
  throw Complaint(std::string(name) + " is no remote operation; there are" + names);
}

HostValue ServerHost::DataOf(const ProfileSettings& profile,
                             const std::string& administrator) const {
  HostValue::Array data = profiles_.DataOf(profile);
  data[pdat::kAdministrator] = administrator.empty() ? options_.administrator : administrator;
  data[pdat::kSharedLog] = options_.sharedLog;
  const PluginArea area = site_.Area();
  data[pdat::kAreaHeight] = area.height;
  data[pdat::kAreaWidth] = area.width;
  return data;
}

void ServerHost::Load(const ProfileSettings& profile) {
  plugin_.LoadInterface(profile.index, site_.Area().window, DataOf(profile, {}));
  started_.insert(profile.index);
  site_.Shown(profile.index);
}

std::size_t ServerHost::LoadEveryProfile() {
  for (const auto& [index, profile] : profiles_.All()) Load(profile);
  return profiles_.All().size();
}

void ServerHost::Show(std::int32_t index) {
  Load(profiles_.Reread(index));
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
  profiles_.At(index);
  plugin_.DisableProfile(index);
  started_.erase(index);
}

HostProfiles::Changes ServerHost::Reload() {
  HostProfiles::Changes changes = profiles_.RereadAll();
  for (const std::int32_t index : changes.removed) {
    plugin_.DisableProfile(index);
    started_.erase(index);
  }
  for (const std::int32_t index : changes.added) started_.insert(index);
  const std::set<std::int32_t> running = started_;
  for (const std::int32_t index : running) Load(profiles_.At(index));
  return changes;
}

HostedPlugin::Reply ServerHost::Remote(std::int32_t index, const RemoteOperation& operation,
                                       const HostValue& value, const std::string& administrator) {
  return plugin_.Remote(operation, index, DataOf(profiles_.At(index), administrator), value);
}

void ServerHost::RequireStarted(std::int32_t index) const {
  const ProfileSettings& profile = profiles_.At(index);
  if (started_.contains(index)) return;
  throw Complaint(profile.Label() + " is stopped; \"show " + std::to_string(index) +
                  "\" starts it");
}

std::string ServerHost::AddMessage(std::int32_t index, const std::string& text,
                                   const std::string& administrator) {
  RequireStarted(index);
  RefuseLong(text);
  MessagesOf(index);  // names what is wrong with the file, where the plugin only answers "0"
  HostedPlugin::Reply reply = Remote(index, remote::kAdd, EncodeBase64(text), administrator);
  if (reply.text != "1") {
    RaiseUnchanged("not added", reply, WhyNotStored(text));
  }
  const std::string place = PlaceOf(text, ListAfter(index, reply));
  return Done("added" + place + HintsAfter(text), reply);
}

std::string ServerHost::DeleteMessage(std::int32_t index, std::int32_t position,
                                      const std::string& administrator) {
  RequireStarted(index);
  const MessageList before = MessagesOf(index);
  const std::string text = before.TextAt(position);
  HostedPlugin::Reply reply = Remote(index, remote::kDelete, position, administrator);
  const bool hasProblems = !reply.problems.empty();
  const auto after = ListAfter(index, reply);
  // The plugin answers "1" also when the message could not be removed.
  if (reply.text != "1" || (after ? after->messages == before.messages : hasProblems)) {
    RaiseUnchanged("not deleted", reply, kCannotBeWritten);
  }
  return Done("deleted: " + text, reply);
}

std::string ServerHost::MoveMessage(std::int32_t index, std::int32_t position, bool up,
                                    const std::string& administrator) {
  RequireStarted(index);
  const std::string text = MessagesOf(index).TextAt(position);
  const RemoteOperation& operation = up ? remote::kMoveUp : remote::kMoveDown;
  const HostedPlugin::Reply reply = Remote(index, operation, position, administrator);
  if (reply.text != "1") {
    RaiseUnchanged("not moved", reply,
                   std::string("it is the ") + (up ? "first" : "last") + " message");
  }
  return Done(std::string("moved ") + (up ? "up: " : "down: ") + text, reply);
}

std::string ServerHost::ChangeMessage(std::int32_t index, std::int32_t position,
                                      const std::string& text, const std::string& administrator) {
  RequireStarted(index);
  RefuseLong(text);
  if (MessagesOf(index).TextAt(position) == text) {
    throw Complaint("not changed: the message has this text already");
  }
  const HostedPlugin::Reply reply = plugin_.ChangeList(
      [&](ListCommands& lists, const ProfileData& PDAT) {
        return lists.ChangeMessage(index, PDAT, static_cast<std::size_t>(position), text);
      },
      index, DataOf(profiles_.At(index), administrator));
  if (reply.text != "1") RaiseUnchanged("not changed", reply, WhyNotStored(text));
  return Done("changed message " + std::to_string(position + 1) + ": " + text + HintsAfter(text),
              reply);
}

std::string ServerHost::PlaceMessage(std::int32_t index, std::int32_t position, std::int32_t to,
                                     const std::string& administrator) {
  RequireStarted(index);
  const MessageList list = MessagesOf(index);
  const std::string& text = list.TextAt(position);
  to = std::min(to, static_cast<std::int32_t>(list.messages.size()) - 1);
  if (to == position) {
    throw Complaint("not moved: it is message " + std::to_string(to + 1) + " already");
  }
  const HostedPlugin::Reply reply = plugin_.ChangeList(
      [&](ListCommands& lists, const ProfileData& PDAT) {
        return lists.PlaceMessage(index, PDAT, static_cast<std::size_t>(position),
                                  static_cast<std::size_t>(to));
      },
      index, DataOf(profiles_.At(index), administrator));
  if (reply.text != "1") RaiseUnchanged("not moved", reply, kCannotBeWritten);
  return Done("moved to " + std::to_string(to + 1) + ": " + text, reply);
}

std::string ServerHost::InsertMessages(std::int32_t index, std::int32_t position,
                                       const std::vector<std::string>& texts,
                                       const std::string& administrator) {
  RequireStarted(index);
  for (const std::string& text : texts) RefuseLong(text);
  const auto count = static_cast<std::int32_t>(MessagesOf(index).messages.size());
  const std::int32_t first = std::min(position, count);
  const HostedPlugin::Reply reply = plugin_.ChangeList(
      [&](ListCommands& lists, const ProfileData& PDAT) {
        return lists.InsertMessages(index, PDAT, static_cast<std::size_t>(first), texts);
      },
      index, DataOf(profiles_.At(index), administrator));
  if (reply.text != "1") RaiseUnchanged("not added", reply, WhyNotStored(Join(texts, "")));
  const std::string words = texts.size() == 1 ? "added" : "added " + std::to_string(texts.size());
  return Done(words + " as message " + std::to_string(first + 1) +
                  (texts.size() == 1 ? HintsAfter(texts[0]) : " and those that follow"),
              reply);
}

std::string ServerHost::SetSwitch(std::int32_t index, bool isOn, const std::string& administrator) {
  RequireStarted(index);
  const std::string value = isOn ? "1" : "0";
  HostedPlugin::Reply reply = Remote(index, remote::kEnable, value, administrator);
  const bool hasProblems = !reply.problems.empty();
  const auto after = ListAfter(index, reply);
  if (after ? after->enable != value : hasProblems) {
    RaiseUnchanged("not switched", reply, kCannotBeWritten);
  }
  return Done(profiles_.At(index).Label() + " is switched " + (isOn ? "on" : "off"), reply);
}

std::string ServerHost::SetInterval(std::int32_t index, std::int32_t minutes,
                                    const std::string& administrator) {
  RequireStarted(index);
  if (minutes < kInterval.lowest || minutes > kInterval.highest) {
    throw Complaint("not changed: an interval is " + std::to_string(kInterval.lowest) + " to " +
                    std::to_string(kInterval.highest) + " minutes");
  }
  const std::string value = std::to_string(minutes);
  HostedPlugin::Reply reply = Remote(index, remote::kChangeInterval, value, administrator);
  const bool hasProblems = !reply.problems.empty();
  const auto after = ListAfter(index, reply);
  if (after ? after->interval != value : hasProblems) {
    RaiseUnchanged("not changed", reply, kCannotBeWritten);
  }
  return Done(profiles_.At(index).Label() + " says a message every " + value +
                  (minutes == 1 ? " minute" : " minutes"),
              reply);
}

ServerHost::Said ServerHost::Say(std::int32_t index, const std::string& text) {
  const ProfileSettings& profile = profiles_.At(index);
  RefuseLong(text);
  const Preview::Text now = preview_.TextOf(profile, preview_.GameOf(profile), text);
  if (now.says.empty() || !now.problem.empty()) {
    throw Complaint("nothing was said: " +
                    (now.problem.empty() ? "it has nothing to say at this moment" : now.problem));
  }
  Chat& chat = profiles_.Components().GetChat();
  chat.Post(index, profile.target, now.says);
  const SentText& sent = chat.LatestOf(index).back();
  if (sent.outcome == SentText::Outcome::Failed) throw Complaint("not said: " + sent.reason);
  const bool isSent = sent.outcome == SentText::Outcome::Sent;
  return {(isSent ? "said: " : "being said: ") + now.says, sent.number, sent.outcome};
}

std::optional<MessageList> ServerHost::ListAfter(std::int32_t index,
                                                 HostedPlugin::Reply& reply) const try {
  return MessagesOf(index);
} catch (const RuntimeError& error) {
  reply.problems.push_back("the list cannot be read again: " + PlainWords(error));
  return std::nullopt;
}

MessageList ServerHost::MessagesOf(std::int32_t index) const {
  return MessageList(HostFolder(profiles_.Folder()).MessageFile(profiles_.At(index).folder));
}

ProfileStatus ServerHost::StatusOf(std::int32_t index) {
  return StatusOf(index, preview_.GameOf(profiles_.At(index)));
}

ProfileStatus ServerHost::StatusOf(std::int32_t index, const Preview::Game& game) const {
  return ReadStatus(profiles_, profiles_.At(index), game, ProgressOf(index),
                    profiles_.Components().GetChat().FailureOf(index));
}

std::string ServerHost::LogFolderOf(std::int32_t index) const {
  const HostFolder paths(profiles_.Folder());
  const ProfileSettings& profile = profiles_.At(index);
  return IsLogShared() ? paths.AdminLogs() : paths.AdminLogs(profile.folder);
}

std::optional<HostedPlugin::Progress> ServerHost::ProgressOf(std::int32_t index) const {
  auto progress = plugin_.ProgressOf(index);
  if (!progress && !started_.contains(index)) {
    progress = HostedPlugin::Progress();  // a stopped profile will start from the beginning
  }
  return progress;
}

}  // namespace rotacasts::host
