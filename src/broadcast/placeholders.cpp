#include "broadcast/placeholders.h"

#include <algorithm>

#include "stats/categories.h"

namespace rotacasts {
namespace {

constexpr std::string_view kOpening = "{Show";

}  // namespace

std::optional<std::string_view> PlaceholderCategory(std::string_view message) {
  if (!message.starts_with(kOpening) || !message.ends_with('}')) return std::nullopt;
  message.remove_prefix(kOpening.size());
  message.remove_suffix(1);
  const auto rows = Categories();
  const bool known = std::any_of(rows.begin(), rows.end(),
                                 [&](const CategoryRow& row) { return row.category == message; });
  return known ? std::optional(message) : std::nullopt;
}

std::vector<std::string> AllPlaceholders() {
  std::vector<std::string> placeholders = {std::string(kShowNextMap)};
  for (const CategoryRow& row : Categories()) {
    std::string placeholder = std::string(kOpening) + std::string(row.category) + "}";
    if (placeholder != placeholders.back()) placeholders.push_back(std::move(placeholder));
  }
  return placeholders;
}

}  // namespace rotacasts
