#include "store/remote_commands.h"

#include <algorithm>

#include "base/arithmetic.h"
#include "base/conversions.h"
#include "base/text.h"

namespace rotacasts {
namespace {

constexpr const char* kDone = "1";
constexpr const char* kNotDone = "0";
constexpr const char* kDefaultEnable = "0";

// What the log says of each change, between the time and the value.
constexpr const char* kAddAction = "][Rotacasts] Add Rotacast (Message: ";
constexpr const char* kEnableAction = "][Rotacasts] Enable Rotacasts (New Value: ";
constexpr const char* kIntervalAction = "][Rotacasts] Change Rotacasts Interval (New Interval: ";
constexpr const char* kDownAction = "][Rotacasts] Move Rotacasts Down (Message: ";
constexpr const char* kUpAction = "][Rotacasts] Move Rotacasts Up (Message: ";
constexpr const char* kDeleteAction = "][Rotacasts] Delete Rotacasts (Message: ";

/// The key `places` after the position that `data` names.
std::string KeyAfter(const HostValue& data, std::int32_t places) {
  return std::to_string((Checked(ToLong(data)) + places).Value());
}

}  // namespace

std::string RemoteCommands::Run(std::string_view operation, std::int32_t index,
                                const std::function<void(std::string&, Step&)>& body) {
  std::string reply;
  Guard(errors_, {operation, index}, [&](Step& at) { body(reply, at); });
  return reply;
}

std::string RemoteCommands::GetMessagesRem(std::int32_t Index, const HostValue& PDAT) {
  Step at;
  try {
    return List(Index, PDAT, at);
  } catch (...) {
    RuntimeError error = CurrentRuntimeError();
    error.description += QuoteFile(Index);  // an error of its own goes to the host instead
    errors_.ReportError({"GetMessagesRem", error, Index, at.Line()});
    return {};
  }
}

std::string RemoteCommands::List(std::int32_t index, const HostValue& PDAT, Step& at) {
  at(1);
  setProfileData_(index, PDAT);
  at(2);
  MessageSection section = store_.Open(index);
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
  std::string enable = section.ReadOption(kEnableKey);
  if (enable.empty()) enable = kDefaultEnable;
  at(5);
  return messages + "|" + enable + "|" + section.ReadOption(kIntervalKey);
}

std::string RemoteCommands::QuoteFile(std::int32_t index) {
  std::string file = tables_.MessageFiles(index);
  std::string quoted = " [" + file + ", ";
  const char* separator = "";
  for (const std::string& line : services_.Utility().ReadFile(file)) {
    quoted += separator + line;
    separator = "\r\n";
  }
  return quoted + "]";
}

std::string RemoteCommands::AddMessageRem(std::int32_t Index, const HostValue& PDAT,
                                          const HostValue& Data) {
  return Run("AddMessageRem", Index, [&](std::string& reply, Step& at) {
    at(1);
    store_.Open(Index);
    const std::string text = services_.Memory().Dec64(ToText(Data));
    at(2);
    if (store_.AddEntry(Index, text)) {
      if (IsShown(Index)) store_.LoadMessages(Index);
      reply = kDone;
    } else {
      reply = kNotDone;
    }
    at(3);
    log_.Write(PDAT, kAddAction, text);
  });
}

std::string RemoteCommands::EnableRTRem(std::int32_t Index, const HostValue& PDAT,
                                        const HostValue& Data) {
  return Run("EnableRTRem", Index, [&](std::string&, Step& at) {
    at(1);
    store_.Open(Index);
    const std::string value = ToText(Data);
    store_.SetOption(Index, kEnableKey, value);
    at(2);
    const std::int16_t checked = ToInteger(Data);
    if (IsShown(Index)) {
      window_.SetSwitch(checked);
    } else {
      window_.RequireSwitchValue(checked);
    }
    at(3);
    log_.Write(PDAT, kEnableAction, value);
  });
}

std::string RemoteCommands::ChangeIntervalRem(std::int32_t Index, const HostValue& PDAT,
                                              const HostValue& Data) {
  return Run("ChangeIntervalRem", Index, [&](std::string&, Step& at) {
    at(1);
    store_.Open(Index);
    const std::string value = ToText(Data);
    store_.SetOption(Index, kIntervalKey, value);
    at(2);
    if (IsShown(Index)) window_.SetInterval(value);
    at(3);
    log_.Write(PDAT, kIntervalAction, value);
  });
}

std::optional<MessageFile::Exchanged> RemoteCommands::Exchange(std::int32_t index,
                                                               const std::string& upperKey,
                                                               const std::string& lowerKey) {
  const std::vector<std::string> lines = store_.Open(index).Lines();
  for (const std::string& key : {upperKey, lowerKey}) {
    const auto isKey = [&key](const std::string& line) { return KeyOf(line) == key; };
    if (std::none_of(lines.begin(), lines.end(), isKey)) return std::nullopt;
  }
  return store_.ExchangeEntries(index, upperKey, lowerKey);
}

std::string RemoteCommands::MoveMessageDownRem(std::int32_t Index, const HostValue& PDAT,
                                               const HostValue& Data) {
  return Run("MoveMessageDownRem", Index, [&](std::string& reply, Step& at) {
    at(1);
    store_.Open(Index);
    const std::string key = KeyAfter(Data, 1);
    at(2);
    const auto texts = Exchange(Index, key, KeyAfter(Data, 2));
    at(3);
    reply = texts ? kDone : kNotDone;
    at(4);
    if (texts) log_.Write(PDAT, kDownAction, texts->first);
  });
}

std::string RemoteCommands::MoveMessageUpRem(std::int32_t Index, const HostValue& PDAT,
                                             const HostValue& Data) {
  return Run("MoveMessageUpRem", Index, [&](std::string& reply, Step& at) {
    at(1);
    store_.Open(Index);
    const std::string key = KeyAfter(Data, 1);
    at(2);
    const auto texts = Exchange(Index, ToText(Data), key);
    at(3);
    reply = texts ? kDone : kNotDone;
    at(4);
    if (texts) log_.Write(PDAT, kUpAction, texts->second);
  });
}

std::string RemoteCommands::DeleteMessageRem(std::int32_t Index, const HostValue& PDAT,
                                             const HostValue& Data) {
  return Run("DeleteMessageRem", Index, [&](std::string& reply, Step& at) {
    at(1);
    store_.Open(Index);
    const std::string key = KeyAfter(Data, 1);
    at(2);
    const std::string text = store_.Open(Index).Read(key);
    at(3);
    store_.DeleteEntry(Index, key);
    at(4);
    if (IsShown(Index)) store_.LoadMessages(Index);
    at(5);
    reply = kDone;
    at(6);
    log_.Write(PDAT, kDeleteAction, text);
  });
}

}  // namespace rotacasts
