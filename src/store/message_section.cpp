#include "store/message_section.h"

#include "base/conversions.h"
#include "base/text.h"

namespace rotacasts {

bool IsBlank(std::string_view text) {
  return TrimSpaces(text).empty();
}

std::string KeyOf(const std::string& line) {
  return line.substr(0, line.find('='));
}

std::optional<std::int32_t> KeyNumber(const std::string& key) {
  try {
    return ToLong(key);
  } catch (const RuntimeError&) {
    return std::nullopt;
  }
}

UtilityComponent::Key KeyToRemove(const std::string& key) {
  const std::optional<std::int32_t> number = WholeNumber(key);
  if (number && std::to_string(*number) == key) return *number;
  return key;
}

std::string KeyAt(std::size_t position) {
  return std::to_string(position + 1);
}

std::vector<std::string> MessageSection::Lines() {
  std::vector<std::string> lines = utility_.GetIniSection(kMessagesSection, Path());
  if (!lines.empty()) lines.pop_back();  // the last element is no line
  return lines;
}

MessageEntry MessageSection::Split(std::string&& line) {
  HostValue pair = utility_.ParseIniKey(std::move(line), true);
  return {ToText(std::move(pair.At(0))), ToText(std::move(pair.At(1)))};
}

std::string MessageSection::TextOf(const std::string& line) {
  return ToText(utility_.ParseIniKey(std::string(line), false));
}

MessageEntries MessageSection::Entries() {
  MessageEntries entries;
  std::vector<std::string> lines = Lines();
  entries.reserve(lines.size());
  for (std::string& line : lines) {
    if (!IsBlank(line)) entries.push_back(Split(std::move(line)));
  }
  return entries;
}

std::string MessageSection::Read(const std::string& key) {
  return utility_.GetIniKey(kMessagesSection, key, Path());
}

void MessageSection::Write(const std::string& key, std::string text) {
  utility_.WriteIniKey(kMessagesSection, key, std::move(text), Path());
}

void MessageSection::Remove(const UtilityComponent::Key& key) {
  utility_.WriteIniKey(kMessagesSection, key, std::nullopt, Path());
}

std::string MessageSection::ReadOption(const char* key) {
  return utility_.GetIniKey(kOptionsSection, key, Path());
}

void MessageSection::WriteOption(const char* key, const std::string& value) {
  utility_.WriteIniKey(kOptionsSection, key, value, Path());
}

}  // namespace rotacasts
