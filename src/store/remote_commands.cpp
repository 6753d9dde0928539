#include "store/remote_commands.h"

#include "base/arithmetic.h"
#include "base/conversions.h"
#include "base/text.h"

namespace rotacasts {
namespace {

constexpr const char* kDone = "1";
constexpr const char* kNotDone = "0";

/// The key `places` after the position that `data` names.
std::string KeyAfter(const HostValue& data, std::int32_t places) {
  return std::to_string((Checked(ToLong(data)) + places).Value());
}

/// The text that is deleted.
std::string Delete(MessageFile& file, const std::string& key, Step& at) {
  const MessageFile::Hold hold(file);
  std::string text = file.Read(key);
  at(3);
  file.DeleteEntry(key);
  return text;
}

}  // namespace

std::string RemoteCommands::Run(std::string_view operation, std::int32_t index,
                                const std::function<void(std::string&, Step&)>& body) {
  std::string reply;
  Guard(errors_, {operation, index}, [&](Step& at) { body(reply, at); });
  return reply;
}

std::string RemoteCommands::GetMessagesRem(std::int32_t Index, const ProfileData& PDAT) {
  Step at;
  std::string file;
  try {
    return List(Index, PDAT, file, at);
  } catch (...) {
    RuntimeError error = CurrentRuntimeError();
    if (file.empty()) file = tables_.MessageFiles(Index);
    error.Extend(QuoteFile(file));  // an error of its own goes to the host instead
    errors_.ReportError({"GetMessagesRem", error, Index, at.Line()});
    return {};
  }
}

std::string RemoteCommands::List(std::int32_t index, const ProfileData& PDAT, std::string& file,
                                 Step& at) {
  at(1);
  setProfileData_(index, PDAT);
  at(2);
  MessageSection section = store_.Open(index);
  file = section.File();
  std::vector<std::string> lines = section.Lines();
  at(3);
  std::string messages;
  for (std::string& line : lines) {
    if (IsBlank(line)) continue;
    const std::string text = section.Split(std::move(line)).text;
    if (!messages.empty()) messages += '|';
    messages += services_.Memory().Enc64(text);
  }
  at(4);
  std::string enable = section.ReadOption(kEnable.key);
  if (enable.empty()) enable = kEnable.fallback;
  at(5);
  return messages + "|" + enable + "|" + section.ReadOption(kInterval.key);
}

std::string RemoteCommands::QuoteFile(std::string file) {
  std::string quoted = " [" + file + ", ";
  const char* separator = "";
  for (const std::string& line : services_.Utility().ReadFile(file)) {
    quoted += separator + line;
    separator = "\r\n";
  }
  return quoted + "]";
}

std::string RemoteCommands::AddMessageRem(std::int32_t Index, const ProfileData& PDAT,
                                          const HostValue& Data) {
  return Run("AddMessageRem", Index, [&](std::string& reply, Step& at) {
    at(1);
    MessageFile file = store_.Open(Index);
    const auto window = window_.Showing(Index);
    const std::string text = services_.Memory().Dec64(ToText(Data));
    at(2);
    if (file.AddEntry(text)) {
      window->LoadMessages();
      reply = kDone;
    } else {
      reply = kNotDone;
    }
    at(3);
    log_.Write(PDAT, admin_action::kAdd, text);
  });
}

std::string RemoteCommands::EnableRTRem(std::int32_t Index, const ProfileData& PDAT,
                                        const HostValue& Data) {
  return Run("EnableRTRem", Index, [&](std::string&, Step& at) {
    at(1);
    MessageFile file = store_.Open(Index);
    const auto window = window_.Showing(Index);
    const std::string value = ToText(Data);
    file.SetOption(kEnable.key, value);
    at(2);
    window->SetSwitch(ToInteger(Data));
    at(3);
    log_.Write(PDAT, admin_action::kEnable, value);
  });
}

std::string RemoteCommands::ChangeIntervalRem(std::int32_t Index, const ProfileData& PDAT,
                                              const HostValue& Data) {
  return Run("ChangeIntervalRem", Index, [&](std::string&, Step& at) {
    at(1);
    MessageFile file = store_.Open(Index);
    const auto window = window_.Showing(Index);
    const std::string value = ToText(Data);
    file.SetOption(kInterval.key, value);
    at(2);
    window->SetInterval(value);
    at(3);
    log_.Write(PDAT, admin_action::kInterval, value);
  });
}

/// One place down or up: the name, the log's action, and which of the two texts is moved.
struct RemoteCommands::Move {
  const char* operation;
  std::string_view action;
  std::string (*upperKey)(const HostValue& Data);
  std::string (*lowerKey)(const HostValue& Data);
  std::string MessageFile::Exchanged::*moved;
};

std::string RemoteCommands::MoveMessage(const Move& move, std::int32_t index,
                                        const ProfileData& PDAT, const HostValue& Data) {
  return Run(move.operation, index, [&](std::string& reply, Step& at) {
    at(1);
    MessageFile file = store_.Open(index);
    const auto window = window_.Showing(index);
    const std::string upperKey = move.upperKey(Data);
    const std::string lowerKey = move.lowerKey(Data);
    at(2);
    const auto texts = file.ExchangeEntries(upperKey, lowerKey);
    at(3);
    reply = texts ? kDone : kNotDone;
    window->LoadMessagesAgain();
    at(4);
    if (texts) log_.Write(PDAT, move.action, (*texts).*move.moved);
  });
}

std::string RemoteCommands::MoveMessageDownRem(std::int32_t Index, const ProfileData& PDAT,
                                               const HostValue& Data) {
  const Move down{"MoveMessageDownRem", admin_action::kMoveDown,
                  [](const HostValue& data) { return KeyAfter(data, 1); },
                  [](const HostValue& data) { return KeyAfter(data, 2); },
                  &MessageFile::Exchanged::first};
  return MoveMessage(down, Index, PDAT, Data);
}

std::string RemoteCommands::MoveMessageUpRem(std::int32_t Index, const ProfileData& PDAT,
                                             const HostValue& Data) {
  const Move up{
      "MoveMessageUpRem", admin_action::kMoveUp, [](const HostValue& data) { return ToText(data); },
      [](const HostValue& data) { return KeyAfter(data, 1); }, &MessageFile::Exchanged::second};
  return MoveMessage(up, Index, PDAT, Data);
}

std::string RemoteCommands::DeleteMessageRem(std::int32_t Index, const ProfileData& PDAT,
                                             const HostValue& Data) {
  return Run("DeleteMessageRem", Index, [&](std::string& reply, Step& at) {
    at(1);
    MessageFile file = store_.Open(Index);
    const auto window = window_.Showing(Index);
    const std::string key = KeyAfter(Data, 1);
    at(2);
    const std::string text = Delete(file, key, at);
    at(4);
    window->LoadMessages();
    at(5);
    reply = kDone;
    at(6);
    log_.Write(PDAT, admin_action::kDelete, text);
  });
}

}  // namespace rotacasts
