#include "host/message_hints.h"

#include <algorithm>

#include "base/text.h"
#include "broadcast/placeholders.h"
#include "store/options.h"

namespace rotacasts::host {
namespace {

/// A byte that a game's chat cannot show: a control code or one that the code page leaves
/// undefined.
bool IsUnshowable(char letter) {
  return IsControl(letter) ||
         std::string_view("\x81\x8D\x8F\x90\x9D").find(letter) != std::string_view::npos;
}

/// The text without braces and blanks at its ends.
std::string_view Bare(std::string_view text) {
  const auto first = text.find_first_not_of("{} ");
  return first == text.npos ? "" : text.substr(first, text.find_last_not_of("{} ") - first + 1);
}

/// Whether the braces suggest a placeholder: a pair of them anywhere, or one brace and a single
/// word that begins like a placeholder.
bool HasMeantBraces(std::string_view message) {
  const auto open = message.find('{');
  if (open != message.npos && message.find('}', open) != message.npos) return true;
  const std::string_view bare = Bare(message);
  return message.find_first_of("{}") != message.npos && bare.find(' ') == bare.npos &&
         EqualsIgnoringCase(bare.substr(0, 4), "Show");
}

/// A hint if the message looks like a placeholder but is not one; empty if it does not.
std::string PlaceholderHint(const std::string& message) {
  if (IsPlaceholder(message)) return {};
  for (const std::string& placeholder : AllPlaceholders()) {
    if (EqualsIgnoringCase(message, placeholder)) {
      return "is in the wrong letter case and sent as written; write " + placeholder;
    }
    if (message.find(placeholder) != message.npos) {
      return "holds " + placeholder +
             " among other text and is sent as written; a placeholder "
             "must be the whole message";
    }
    if (EqualsIgnoringCase(Bare(message), Bare(placeholder))) {
      return "names a placeholder without its braces and is sent as written; write " + placeholder;
    }
  }
  if (HasMeantBraces(message)) {
    return "has braces at no placeholder's name and is sent as written; the console's "
           "\"placeholders\" lists them";
  }
  return {};
}

}  // namespace

std::vector<std::string> HintsOn(const std::string& message) {
  std::vector<std::string> hints;
  const std::string bytes = ToWindows1252(message, '?');
  if (std::string hint = PlaceholderHint(message); !hint.empty()) {
    hints.push_back(std::move(hint));
  }
  if (std::any_of(bytes.begin(), bytes.end(), IsUnshowable)) {
    hints.emplace_back("holds a character that the game cannot show; take it out");
  }
  if (const std::size_t length = CountCharacters(message); length > kMessageCharacters) {
    hints.push_back("has " + std::to_string(length) + " characters, more than the " +
                    std::to_string(kMessageCharacters) +
                    " that the window adds; shorten it if players do not see its end");
  }
  return hints;
}

}  // namespace rotacasts::host
