#include "broadcast/live_texts.h"

#include "base/text.h"
#include "broadcast/placeholders.h"
#include "game/game_builds.h"

namespace rotacasts {
namespace {

/// What reads the live texts of a family of games.
struct Readers {
  std::string (GameReader::*nextMap)(std::int32_t profileIndex);
  std::string (InfoTexts::*stat)(std::int32_t profileIndex, const std::string& category);
};

const Readers& ReadersOf(Family family) {
  static constexpr Readers kDfbhd = {&GameReader::GetNextMap, &InfoTexts::GetStat};
  static constexpr Readers kCommon = {&GameReader::GetNextMapJO, &InfoTexts::GetStat2};
  return family == Family::Dfbhd ? kDfbhd : kCommon;
}

}  // namespace

std::string LiveTexts::TextOf(std::int32_t profileIndex, const std::string& gameCode,
                              const std::string& message) {
  const std::string text = Read(profileIndex, gameCode, message);
  return std::string(TrimSpaces(ReplaceAll(text, "\r\n", "")));
}

std::string LiveTexts::Read(std::int32_t profileIndex, const std::string& gameCode,
                            const std::string& message) {
  const Readers& readers = ReadersOf(FamilyOf(gameCode));
  if (message == kShowNextMap) return (game_.*readers.nextMap)(profileIndex);
  const auto category = PlaceholderCategory(message);
  if (!category) return message;
  return (infoTexts_.*readers.stat)(profileIndex, std::string(*category));
}

}  // namespace rotacasts
