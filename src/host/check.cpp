#include "host/check.h"

#include <algorithm>

#include "base/conversions.h"
#include "base/text.h"
#include "broadcast/placeholders.h"
#include "host/components/ini_text.h"
#include "store/message_file.h"

namespace rotacasts::host {
namespace {

/// A byte that a game's chat has no letter for: a control code or one that the code page leaves
/// out.
bool IsUnshowable(char letter) {
  const auto byte = static_cast<unsigned char>(letter);
  return byte < 0x20 || byte == 0x7F ||
         std::string_view("\x81\x8D\x8F\x90\x9D").find(letter) != std::string_view::npos;
}

/// The text without the braces and blanks around it.
std::string_view Bare(std::string_view text) {
  const auto first = text.find_first_not_of("{} ");
  return first == text.npos ? "" : text.substr(first, text.find_last_not_of("{} ") - first + 1);
}

/// Whether braces say that a message was meant as a placeholder: a pair of them anywhere, or one
/// beside one word that begins like a placeholder.
bool HasMeantBraces(std::string_view message) {
  const auto open = message.find('{');
  if (open != message.npos && message.find('}', open) != message.npos) return true;
  const std::string_view bare = Bare(message);
  return message.find_first_of("{}") != message.npos && bare.find(' ') == bare.npos &&
         EqualsIgnoringCase(bare.substr(0, 4), "Show");
}

/// What is wrong with a message that has to do with placeholders; empty for nothing.
std::string PlaceholderWarning(const std::string& message) {
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
  if (HasMeantBraces(message)) return "has braces at no placeholder's name and is sent as written";
  return {};
}

std::vector<std::string> MessageWarnings(const std::string& bytes) {
  std::vector<std::string> warnings;
  const std::string message = FromWindows1252(bytes);
  if (std::string warning = PlaceholderWarning(message); !warning.empty()) {
    warnings.push_back(std::move(warning));
  }
  if (std::any_of(bytes.begin(), bytes.end(), IsUnshowable)) {
    warnings.emplace_back("holds a character that the game cannot show");
  }
  if (const std::size_t length = CountCharacters(message); length > kMessageCharacters) {
    warnings.push_back("has " + std::to_string(length) + " characters, more than the " +
                       std::to_string(kMessageCharacters) + " that the window adds");
  }
  return warnings;
}

/// A warning unless the option is missing or a number from 0 to `highest`.
void CheckOption(const IniText& ini, const char* key, int highest, const char* fallback,
                 std::vector<std::string>& warnings) {
  const auto value = ini.Value(kOptionsSection, key);
  if (!value || value->empty()) return;
  const std::string text = FromWindows1252(*value);
  std::string warning = std::string(key) + " is \"" + text + "\", ";
  if (!IsNumeric(text)) {
    warnings.push_back(warning + "which is no number; the window reports an error");
  } else if (ToDouble(text) < 0 || ToDouble(text) > highest) {
    warnings.push_back(warning + "outside 0 to " + std::to_string(highest) + "; the window takes " +
                       fallback);
  }
}

}  // namespace

std::vector<std::string> CheckMessageFile(const std::string& path) {
  std::vector<std::string> warnings;
  const IniText ini = ReadIni(path);
  std::size_t position = 0;
  for (const IniText::Line& line : ini.Lines(kMessagesSection)) {
    const std::string expected = std::to_string(++position);
    const std::string what =
        "message " + std::to_string(position - 1) + " \"" + FromWindows1252(line.value) + "\" ";
    if (line.key != expected) {
      warnings.push_back(what + "has the key " + FromWindows1252(line.key) + " and not " +
                         expected + "; keys are 1 to n in line order");
    }
    for (const std::string& warning : MessageWarnings(std::string(line.value))) {
      warnings.push_back(what + warning);
    }
  }
  CheckOption(ini, kEnableKey, 1, "0", warnings);
  CheckOption(ini, kIntervalKey, 30, "3", warnings);
  return warnings;
}

}  // namespace rotacasts::host
