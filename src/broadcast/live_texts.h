// What a message says at this moment.
#pragma once

#include <cstdint>
#include <string>

#include "game/game_reader.h"
#include "stats/info_texts.h"

namespace rotacasts {

/// Replaces a placeholder by its live text, read from the profile's game server by the readers that
/// its game build is served by.
class LiveTexts {
 public:
  LiveTexts(GameReader& game, InfoTexts& infoTexts) : game_(game), infoTexts_(infoTexts) {}

  /// The message itself, or its live text if it is exactly a placeholder; on one line and without
  /// blanks at its ends. The reader's error handler is told why a live text cannot be read; the
  /// text is then the reader's fallback.
  std::string TextOf(std::int32_t profileIndex, const std::string& gameCode,
                     const std::string& message);

 private:
  std::string Read(std::int32_t profileIndex, const std::string& gameCode,
                   const std::string& message);

  GameReader& game_;
  InfoTexts& infoTexts_;
};

}  // namespace rotacasts
