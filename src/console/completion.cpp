#include "console/completion.h"

#include "base/word_list.h"
#include "broadcast/placeholders.h"
#include "console/console.h"
#include "plugin/remote_operations.h"

namespace rotacasts::host {
namespace {

/// What an argument may be, by its name in the command's usage.
std::vector<std::string> ValuesOf(const std::string& argument,
                                  const std::vector<std::int32_t>& profiles) {
  std::vector<std::string> values;
  if (argument == "PROFILE" || argument == "[PROFILE]") {
    for (const std::int32_t index : profiles) values.push_back(std::to_string(index));
  } else if (argument == "TEXT") {
    values = AllPlaceholders();
  } else if (argument == "OPERATION") {
    for (const RemoteOperation& operation : kRemoteOperations) values.emplace_back(operation.name);
  } else if (argument == "0|1") {
    values = {"0", "1"};
  }
  return values;
}

}  // namespace

std::vector<std::string> Completions(const std::string& before,
                                     const std::vector<std::int32_t>& profiles) {
  const std::vector<std::string> words = SplitWords(before);
  std::vector<std::string> found;
  for (const auto& [usage, help] : Console::Commands()) {
    const std::vector<std::string> parts = SplitWords(usage);
    const std::size_t place = words.size();
    if (place >= parts.size() || (place > 0 && parts[0] != words[0])) continue;
    const bool isLast = place + 1 == parts.size() || parts[place + 1].starts_with('[');
    for (const std::string& word :
         place == 0 ? std::vector{parts[0]} : ValuesOf(parts[place], profiles)) {
      found.push_back(word + (isLast ? "" : " "));
    }
  }
  return found;
}

}  // namespace rotacasts::host
