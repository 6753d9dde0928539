#include "check/check.h"

#include <algorithm>

#include "base/conversions.h"
#include "base/text.h"
#include "broadcast/placeholders.h"
#include "store/message_file.h"

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

/// A warning if the message looks like a placeholder but is not one; empty if it does not.
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
  if (HasMeantBraces(message)) {
    return "has braces at no placeholder's name and is sent as written; the console's "
           "\"placeholders\" lists them";
  }
  return {};
}

std::vector<std::string> MessageWarnings(const std::string& bytes) {
  std::vector<std::string> warnings;
  const std::string message = FromWindows1252(bytes);
  if (std::string warning = PlaceholderWarning(message); !warning.empty()) {
    warnings.push_back(std::move(warning));
  }
  if (std::any_of(bytes.begin(), bytes.end(), IsUnshowable)) {
    warnings.emplace_back("holds a character that the game cannot show; take it out");
  }
  if (const std::size_t length = CountCharacters(message); length > kMessageCharacters) {
    warnings.push_back("has " + std::to_string(length) + " characters, more than the " +
                       std::to_string(kMessageCharacters) +
                       " that the window adds; shorten it if players do not see its end");
  }
  return warnings;
}

/// Warns unless the option is a number in its range.
void CheckOption(FileCheck& file, const Option& option, const char* whenMissing) {
  const std::string key = option.key;
  const std::string text = FromWindows1252(file.Ini().Value(kOptionsSection, key).value_or(""));
  const std::string range = std::to_string(option.lowest) + " to " + std::to_string(option.highest);
  const auto warn = [&](const std::string& words) {
    file.WarnAt(kOptionsSection, key, key + " is " + words);
  };
  if (text.empty()) {
    warn(std::string("missing: ") + whenMissing);
  } else if (!IsNumeric(text)) {
    warn("\"" + text + "\", which is no number; write " + range);
  } else if (ToDouble(text) < option.lowest || ToDouble(text) > option.highest) {
    warn("\"" + text + "\", outside " + range + ": starting the profile writes " + option.fallback +
         " in its place; write " + range);
  }
}

}  // namespace

void CheckMessages(FileCheck& file) {
  file.CheckLines();
  file.CheckKeys(kOptionsSection, {kEnable.key, kInterval.key});
  std::size_t position = 0;
  bool isInside = false;
  const std::vector<IniText::Row> rows = file.Ini().Rows();
  for (std::size_t i = 0; i < rows.size(); ++i) {
    const IniText::Row& row = rows[i];
    const bool isHeading = row.kind == IniText::Row::Kind::Heading;
    if (isHeading && isInside) break;
    if (isHeading) isInside = EqualsIgnoringCase(row.name, kMessagesSection);
    if (!isInside || row.kind != IniText::Row::Kind::Key) continue;
    const std::string due = std::to_string(++position);
    const std::string what =
        "message " + std::to_string(position - 1) + " \"" + FromWindows1252(row.rest) + "\" ";
    if (row.name != due) {
      file.Warn(i + 1, what + "has the key " + FromWindows1252(row.name) + " and not " + due +
                           "; number the keys from 1 in line order");
    }
    for (const std::string& warning : MessageWarnings(std::string(row.rest))) {
      file.Warn(i + 1, what + warning);
    }
  }
  if (position == 0) {
    file.WarnAt(kMessagesSection, "", "there are no messages; write 1=TEXT below [Messages]");
  }
  CheckOption(file, kEnable, "the profile is switched off; write Enable=1 below [Options]");
  CheckOption(file, kInterval,
              "a message goes out every 3 minutes; write Interval=3 below [Options]");
}

}  // namespace rotacasts::host
