#include "broadcast/broadcast_timer.h"

#include "base/conversions.h"
#include "base/text.h"
#include "game/address_table.h"

namespace rotacasts {
namespace {

// What the memory component is told of every chat message besides its text: a message kind and a
// mode. Their meaning is the component's.
constexpr const char* kChatKind = "MSG";
constexpr std::int16_t kChatMode = 3;

}  // namespace

void BroadcastTimer::tmrRT_Timer(std::int16_t Index) {
  Guard(errors_, {"tmrRT", tables_.currentWindowProfile}, [&](Step& at) {
    while (RunPass(Index, at) == Pass::TriesNextMessage) {
    }
  });
}

BroadcastTimer::Pass BroadcastTimer::RunPass(std::int16_t index, Step& at) {
  if (!IsDue(index, at)) return Pass::Ended;

  at(5);
  if (!store_.HasFile(index)) return Pass::Ended;  // its folder was refused, and that was told
  MessageSection section = store_.Open(index);
  const std::vector<std::string> lines = section.Lines();
  const auto count = static_cast<std::int32_t>(lines.size());
  if (count < 1) {
    tables_.ElapsedTicks(index) = 0;
    return Pass::Ended;
  }
  at(6);
  if (tables_.NextMessage(index) > count - 1) tables_.NextMessage(index) = 0;
  at(7);
  const std::int32_t position = tables_.NextMessage(index);
  at(8);
  const std::string message = section.TextOf(lines.at(static_cast<std::size_t>(position)));
  at(9);
  std::string text = liveTexts_.TextOf(index, message);
  at(11);
  tables_.NextMessage(index) = position + 1;
  if (text.empty()) {
    at(13);
    if (tables_.NextMessage(index) > 1) return Pass::TriesNextMessage;
    // The list has come round to its first message: the tick ends without one.
  } else {
    at(12);
    Send(index, std::move(text));
  }
  tables_.ElapsedTicks(index) = 0;
  return Pass::Ended;
}

bool BroadcastTimer::IsDue(std::int32_t index, Step& at) {
  at(1);
  if (!game_.HasMemoryMap(index)) return false;
  at(2);
  if (!game_.IsGameRunning(index)) return false;
  if (!window_.IsLoaded()) return false;  // unloaded inside the call above, and not made for this
  at(3);
  if (window_.Switch() != 1) return false;
  at(4);
  const std::int32_t interval = ToLong(TrimSpaces(window_.Interval()));
  std::int32_t& elapsed = tables_.ElapsedTicks(index);
  if (interval <= 1 || elapsed >= interval - 1) return true;
  ++elapsed;
  return false;
}

void BroadcastTimer::Send(std::int16_t index, std::string text) {
  ProfileRecord& record = tables_.Profiles(index);
  MemoryComponent& memory = services_.Memory();
  std::int16_t profileIndex = index;
  if (record.GameCode == kDfbhd) {
    memory.AddMsg(profileIndex, record.MessageTarget, text, record.IsAffiliate, kChatKind,
                  kChatMode);
  } else {
    memory.AddMsgB(profileIndex, record.MessageTarget, text, record.IsAffiliate, kChatKind,
                   kChatMode, record.GameCode);
  }
}

}  // namespace rotacasts
