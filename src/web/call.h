// A request with its route: its contents, and how it is refused.
#pragma once

#include <algorithm>
#include <cstdint>
#include <memory>
#include <nlohmann/json.hpp>
#include <string>
#include <utility>
#include <vector>

#include "base/text.h"
#include "host/message_list.h"
#include "web/admins.h"
#include "web/http_server.h"
#include "web/snapshots.h"

namespace rotacasts::host::web {

/// A refusal, thrown by whatever handles a request.
struct Refusal {
  unsigned status;
  std::string error;  // for programs
  std::string words;  // for people
  std::vector<std::pair<std::string, std::string>> headers = {};

  operator Response() const {
    return {status, "application/json", JsonText({{"error", error}, {"words", words}}), headers};
  }
};

/// A request with its route.
struct Call {
  const std::shared_ptr<Exchange>& exchange;
  std::int32_t profile = 0;
  Admin admin = {};
  nlohmann::json body = {};

  const Request& Asked() const { return exchange->Asked(); }
  void Answer(const nlohmann::json& value) const {
    exchange->Answer({200, "application/json", JsonText(value)});
  }

  std::string Text(const char* name) const {
    const nlohmann::json& value = Field(name);
    if (!value.is_string()) throw WrongKind(name, "a text");
    return value.get<std::string>();
  }
  bool Truth(const char* name) const {
    const nlohmann::json& value = Field(name);
    if (!value.is_boolean()) throw WrongKind(name, "true or false");
    return value.get<bool>();
  }
  std::int32_t Number(const char* name) const {
    const nlohmann::json& value = Field(name);
    if (!value.is_number_integer()) throw WrongKind(name, "a whole number");
    const auto number = value.get<std::int64_t>();
    if (number < 0 || number > INT32_MAX) {
      throw Refusal{400, "form", "the number is too large or negative"};
    }
    return static_cast<std::int32_t>(number);
  }
  /// A text that can be sent to players: one line of characters that the message file can hold.
  /// Errors: a Refusal, or error 5 for a character that Windows-1252 lacks.
  std::string Message(const char* name = "text") const { return AsMessage(Text(name)); }
  /// A list of such texts.
  std::vector<std::string> Messages(const char* name) const {
    const nlohmann::json& value = Field(name);
    const auto isText = [](const nlohmann::json& one) { return one.is_string(); };
    if (!value.is_array() || value.empty() || !std::ranges::all_of(value, isText)) {
      throw WrongKind(name, "a list of texts");
    }
    std::vector<std::string> texts;
    for (const nlohmann::json& one : value) texts.push_back(AsMessage(one.get<std::string>()));
    return texts;
  }
  /// The position in the request. By itself it would mean another message once somebody else has
  /// changed the list. Errors: a Refusal if its message is no longer the one that the client saw.
  std::int32_t SeenPosition(const MessageList& list) const {
    const std::int32_t position = Number("position");
    const std::string seen = Text("text");
    const auto at = static_cast<std::size_t>(position);
    if (at < list.messages.size() && list.messages[at].text == seen) return position;
    throw Refusal{409, "changed", "the list has changed meanwhile; nothing was done"};
  }

 private:
  /// Null if the body lacks the field.
  const nlohmann::json& Field(const char* name) const {
    static const nlohmann::json kNone;
    const auto found = body.find(name);
    return found != body.end() ? *found : kNone;
  }
  static std::string AsMessage(const std::string& given) {
    std::string text(TrimSpaces(given));
    if (text.empty()) throw Refusal{422, "refused", "there is no text"};
    if (HasControl(text)) {
      throw Refusal{422, "refused", "a message is one line without characters of control"};
    }
    ToWindows1252(text);
    return text;
  }
  static Refusal WrongKind(const char* name, const char* kind) {
    return {400, "form", std::string("\"") + name + "\" has to be " + kind};
  }
};

}  // namespace rotacasts::host::web
