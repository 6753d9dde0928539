#include "host/message_list.h"

#include "base/conversions.h"
#include "base/text.h"
#include "files/native_files.h"
#include "host/complaint.h"
#include "siblings/ini_text.h"
#include "store/message_file.h"

namespace rotacasts::host {

MessageList::MessageList(std::string messageFile) : path(std::move(messageFile)) {
  const IniText ini = ReadIni(path);
  for (const IniText::Line& line : ini.Lines(kMessagesSection)) {
    messages.push_back({FromWindows1252(line.key), FromWindows1252(line.value)});
  }
  enable = FromWindows1252(ini.Value(kOptionsSection, kEnable.key).value_or(""));
  interval = FromWindows1252(ini.Value(kOptionsSection, kInterval.key).value_or(""));
}

const std::string& MessageList::TextAt(std::int32_t position) const {
  for (std::size_t i = 0; i < messages.size(); ++i) {
    const std::string due = std::to_string(i + 1);
    if (messages[i].key == due) continue;
    throw Complaint("message " + due + " \"" + messages[i].text + "\" has the key " +
                    messages[i].key +
                    ", so a number could mean another message; number the keys from 1 in " +
                    NativePath(path).string() + " and try again");
  }
  if (position >= 0 && static_cast<std::size_t>(position) < messages.size()) {
    return messages[static_cast<std::size_t>(position)].text;
  }
  throw Complaint("there is no message " + std::to_string(std::int64_t{position} + 1) +
                  "; \"messages\" lists those there are");
}

std::string OptionProblem(const std::string& messageFile) {
  const IniText ini = ReadIni(messageFile);
  for (const Option& option : {kEnable, kInterval}) {
    const std::string text = FromWindows1252(ini.Value(kOptionsSection, option.key).value_or(""));
    if (text.empty() || IsNumeric(text)) continue;
    return NativePath(messageFile).string() + ":" +
           std::to_string(ini.LineOf(kOptionsSection, option.key)) + ": " + option.key + " is \"" +
           text + "\", which is no number; write " + std::to_string(option.lowest) + " to " +
           std::to_string(option.highest);
  }
  return {};
}

}  // namespace rotacasts::host
