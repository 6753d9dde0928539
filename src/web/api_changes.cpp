// The routes that change or say something.

#include <algorithm>

#include "web/api.h"
#include "web/call.h"

namespace rotacasts::host::web {

Response Api::Changed(const Call& call, const std::string& words) {
  snapshots_.Changed(call.profile);
  if (onChange) onChange();
  return {200, "application/json", JsonText({{"done", words}})};
}

void Api::Say(Call& call) {
  const std::string words = host_.Say(call.profile, call.Message()).words;
  out_ << call.admin.name << ", " << host_.Profiles().At(call.profile).Label() << ": " << words
       << "\n"
       << std::flush;
  call.exchange->Answer(Changed(call, words));
}

void Api::Add(Call& call) {
  call.exchange->Answer(
      Changed(call, host_.AddMessage(call.profile, call.Message(), call.admin.name)));
}

void Api::Delete(Call& call) {
  const std::int32_t position = call.SeenPosition(host_.MessagesOf(call.profile));
  call.exchange->Answer(
      Changed(call, host_.DeleteMessage(call.profile, position, call.admin.name)));
}

void Api::Restore(Call& call) {
  const std::int32_t wanted = call.Number("position");
  const auto count = static_cast<std::int32_t>(host_.MessagesOf(call.profile).messages.size());
  host_.AddMessage(call.profile, call.Message(), call.admin.name);
  for (std::int32_t position = count; position > wanted; --position) {
    host_.MoveMessage(call.profile, position, true, call.admin.name);
  }
  call.exchange->Answer(
      Changed(call, "put back as message " + std::to_string(std::min(wanted, count) + 1)));
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
