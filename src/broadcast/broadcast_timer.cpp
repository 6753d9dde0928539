#include "broadcast/broadcast_timer.h"

#include "broadcast/live_texts.h"
#include "broadcast/schedule.h"
#include "game/game_builds.h"

namespace rotacasts {
namespace {

// What the memory component is told of every chat message besides its text: a message kind and a
// mode. Their meaning is the component's.
constexpr const char* kChatKind = "MSG";
constexpr std::int16_t kChatMode = 3;

/// Whether a message is to go out now; counts the tick if none is.
bool IsDue(Pass& pass, const GameReader& game, Step& at) {
  at(1);
  if (!game.HasMemoryMap(pass.Profile())) return false;
  at(2);
  if (!game.IsGameRunning(pass.Profile())) return false;
  at(3);
  if (pass.Settings().Switch() != 1) return false;
  at(4);
  std::int32_t& elapsed = pass.ElapsedTicks();
  if (TicksUntilDue(pass.Settings().Interval(), elapsed) == 1) return true;
  ++elapsed;
  return false;
}

void Send(Pass& pass, std::string text) {
  ProfileRecord& record = pass.Record();
  std::int16_t profileIndex = pass.Profile();
  if (FamilyOf(record.GameCode) == Family::Dfbhd) {
    pass.Memory().AddMsg(profileIndex, record.MessageTarget, text, record.IsAffiliate, kChatKind,
                         kChatMode);
  } else {
    pass.Memory().AddMsgB(profileIndex, record.MessageTarget, text, record.IsAffiliate, kChatKind,
                          kChatMode, record.GameCode);
  }
}

/// Tries one message. False when it says nothing and the next one is to be tried.
bool TryMessage(Pass& pass, MessageStore& store, GameReader& game, LiveTexts& liveTexts, Step& at) {
  if (!IsDue(pass, game, at)) return true;
  at(5);
  if (!store.HasFile(pass.Profile())) return true;  // its folder was refused, which was reported
  MessageSection section = store.Open(pass.Profile());
  const std::vector<std::string> lines = section.Lines();
  const auto count = static_cast<std::int32_t>(lines.size());
  if (count < 1) {
    pass.ElapsedTicks() = 0;
    return true;
  }
  at(6);
  const std::int32_t position = NextPosition(pass.NextMessage(), count);
  pass.NextMessage() = position;
  at(8);
  const std::string message = section.TextOf(lines.at(static_cast<std::size_t>(position)));
  at(9);
  std::string text = liveTexts.TextOf(pass.Profile(), pass.Record().GameCode, message);
  at(11);
  pass.NextMessage() = position + 1;
  if (text.empty()) {
    at(13);
    if (position > 0) return false;
    // The list has come round to its first message: the tick ends without one.
  } else {
    at(12);
    Send(pass, std::move(text));
  }
  pass.ElapsedTicks() = 0;
  return true;
}

}  // namespace

void BroadcastTimer::tmrRT_Timer(std::int16_t Index) {
  Pass pass(services_, tables_, errors_, window_.Loaded(), Index);
  GameReader game(pass, tables_, pass);
  InfoTexts infoTexts(pass, tables_, pass);
  LiveTexts liveTexts(game, infoTexts);
  Guard(pass, {"tmrRT", tables_.currentWindowProfile}, [&](Step& at) {
    while (!TryMessage(pass, store_, game, liveTexts, at)) {
    }
  });
}

}  // namespace rotacasts
