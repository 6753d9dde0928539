#include "check/check.h"

#include <algorithm>

#include "base/conversions.h"
#include "base/text.h"
#include "host/message_hints.h"
#include "store/message_file.h"

namespace rotacasts::host {
namespace {

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
    const std::string what = "message " + due + " \"" + FromWindows1252(row.rest) + "\" ";
    if (row.name != due) {
      file.Warn(i + 1, what + "has the key " + FromWindows1252(row.name) + " and not " + due +
                           "; number the keys from 1 in line order");
    }
    for (const std::string& hint : HintsOn(FromWindows1252(row.rest))) {
      file.Warn(i + 1, what + hint);
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
