// The routes that change or say something.

#include <algorithm>
#include <map>

#include "web/api.h"
#include "web/call.h"
#include "web/without_paths.h"

namespace rotacasts::host::web {
namespace {

using nlohmann::json;

/// The messages that `from` has more often than `to`, in their order, without blank ones.
std::vector<std::string> MessagesThatLack(const MessageList& from, const MessageList& to) {
  std::map<std::string, int> there;
  for (const MessageList::Message& message : to.messages) ++there[message.text];
  std::vector<std::string> texts;
  for (const MessageList::Message& message : from.messages) {
    if (TrimSpaces(message.text).empty() || there[message.text]-- > 0) continue;
    texts.push_back(message.text);
  }
  return texts;
}

std::string Messages(std::size_t count) {
  return std::to_string(count) + (count == 1 ? " message" : " messages");
}

}  // namespace

Response Api::Changed(std::int32_t profile, const json& answer) {
  snapshots_.Changed(profile);
  if (onChange) onChange();
  return {200, "application/json", JsonText(answer)};
}

Response Api::Changed(const Call& call, const std::string& words) {
  return Changed(call.profile, {{"done", WithoutFolder(words, host_.Profiles().Folder())}});
}

void Api::Say(Call& call) {
  constexpr const char* kOutcomes[] = {"under way", "sent"};  // one that failed is refused
  const ServerHost::Said said = host_.Say(call.profile, call.Message());
  out_ << call.admin.name << ", " << host_.Profiles().At(call.profile).Label() << ": " << said.words
       << "\n"
       << std::flush;
  call.exchange->Answer(
      Changed(call.profile, {{"done", said.words},
                             {"number", said.number},
                             {"outcome", kOutcomes[static_cast<int>(said.outcome)]}}));
}

void Api::Add(Call& call) {
  call.exchange->Answer(
      Changed(call, host_.AddMessage(call.profile, call.Message(), call.admin.name)));
}

void Api::AddAll(Call& call, std::vector<std::string> texts) {
  if (texts.empty()) {
    return call.Answer({{"done", "nothing was lacking"}, {"added", 0}});
  }
  const std::weak_ptr<Exchange> waiting = call.exchange;
  const auto finish = [this, waiting, profile = call.profile](const Additions::Outcome& outcome) {
    std::string done = "added " + Messages(outcome.added);
    for (const std::string& note : outcome.notes) done += "\n" + note;
    done = WithoutFolder(done, host_.Profiles().Folder());
    Response response = Changed(profile, {{"done", done}, {"added", outcome.added}});
    if (!outcome.problem.empty()) {
      const std::string words =
          outcome.added == 0 ? outcome.problem
                             : "added only " + Messages(outcome.added) + ": " + outcome.problem;
      response = Refusal{422, "refused", WithoutPaths(words, host_.Profiles().Folder())};
    }
    if (const auto exchange = waiting.lock()) exchange->Answer(std::move(response));
  };
  if (additions_.Begin(call.profile, std::move(texts), call.admin.name, finish)) return;
  throw Refusal{503, "busy", "many lists are being added; try again", {{"Retry-After", "1"}}};
}

void Api::AddList(Call& call) {
  AddAll(call, call.Messages("texts"));
}

void Api::CopyList(Call& call) {
  const std::int32_t from = call.Number("from");
  RequireSeen(call.admin, from);
  AddAll(call, MessagesThatLack(host_.MessagesOf(from), host_.MessagesOf(call.profile)));
}

void Api::ChangeText(Call& call) {
  const std::string text = call.Message("newText");
  const std::int32_t position = call.SeenPosition(host_.MessagesOf(call.profile));
  call.exchange->Answer(
      Changed(call, host_.ChangeMessage(call.profile, position, text, call.admin.name)));
}

void Api::Place(Call& call) {
  const std::int32_t to = call.Number("to");
  const std::int32_t position = call.SeenPosition(host_.MessagesOf(call.profile));
  call.exchange->Answer(
      Changed(call, host_.PlaceMessage(call.profile, position, to, call.admin.name)));
}

void Api::Delete(Call& call) {
  const std::int32_t position = call.SeenPosition(host_.MessagesOf(call.profile));
  call.exchange->Answer(
      Changed(call, host_.DeleteMessage(call.profile, position, call.admin.name)));
}

void Api::Restore(Call& call) {
  const std::int32_t wanted = call.Number("position");
  call.exchange->Answer(
      Changed(call, host_.InsertMessages(call.profile, wanted, {call.Message()}, call.admin.name)));
}

void Api::Move(Call& call) {
  const bool up = call.Truth("up");
  const std::int32_t position = call.SeenPosition(host_.MessagesOf(call.profile));
  call.exchange->Answer(
      Changed(call, host_.MoveMessage(call.profile, position, up, call.admin.name)));
}

void Api::Switch(Call& call) {
  call.exchange->Answer(
      Changed(call, host_.SetSwitch(call.profile, call.Truth("on"), call.admin.name)));
}

void Api::SetInterval(Call& call) {
  call.exchange->Answer(
      Changed(call, host_.SetInterval(call.profile, call.Number("minutes"), call.admin.name)));
}

}  // namespace rotacasts::host::web
