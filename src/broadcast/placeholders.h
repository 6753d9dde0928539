// The info placeholders: messages that are replaced by a live text when they are sent.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace rotacasts {

/// Replaced by the next-map text.
inline constexpr std::string_view kShowNextMap = "{ShowNextMap}";

/// The category of a message that is exactly a statistic's placeholder, "{Show" + category + "}",
/// letter case included; nothing for any other message, kShowNextMap included.
std::optional<std::string_view> PlaceholderCategory(std::string_view message);

/// Whether the whole message is a placeholder of either kind.
inline bool IsPlaceholder(std::string_view message) {
  return message == kShowNextMap || PlaceholderCategory(message).has_value();
}

/// Every placeholder, each once.
std::vector<std::string> AllPlaceholders();

}  // namespace rotacasts
