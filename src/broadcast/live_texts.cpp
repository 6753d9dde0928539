#include "broadcast/live_texts.h"

#include "base/text.h"
#include "broadcast/placeholders.h"
#include "game/address_table.h"

namespace rotacasts {

std::string LiveTexts::TextOf(std::int32_t profileIndex, const std::string& gameCode,
                              const std::string& message) {
  const std::string text = Read(profileIndex, gameCode, message);
  return std::string(TrimSpaces(ReplaceAll(text, "\r\n", "")));
}

std::string LiveTexts::Read(std::int32_t profileIndex, const std::string& gameCode,
                            const std::string& message) {
  const bool isDfbhd = gameCode == kDfbhd;
  if (message == kShowNextMap) {
    return isDfbhd ? game_.GetNextMap(profileIndex) : game_.GetNextMapJO(profileIndex);
  }
  const auto category = PlaceholderCategory(message);
  if (!category) return message;
  const std::string name(*category);
  return isDfbhd ? infoTexts_.GetStat(profileIndex, name) : infoTexts_.GetStat2(profileIndex, name);
}

}  // namespace rotacasts
