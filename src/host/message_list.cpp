#include "host/message_list.h"

#include "base/text.h"
#include "host/complaint.h"
#include "machine/native_files.h"
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
    throw Complaint("the message \"" + messages[i].text + "\" at position " + std::to_string(i) +
                    " has the key " + messages[i].key + " instead of " + due +
                    ", so a position could mean another message; number the keys from 1 in " +
                    NativePath(path).string() + " and try again");
  }
  if (position >= 0 && static_cast<std::size_t>(position) < messages.size()) {
    return messages[static_cast<std::size_t>(position)].text;
  }
  throw Complaint("there is no message at position " + std::to_string(position) +
                  "; \"messages\" lists those there are");
}

}  // namespace rotacasts::host
