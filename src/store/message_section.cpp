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
  const std::optional<std::int32_t> number = KeyNumber(key);
  if (number && std::to_string(*number) == key) return *number;
  return key;
}

std::string KeyAt(std::size_t position) {
  return std::to_string(position + 1);
}

std::vector<std::string> MessageSection::Lines() {
  std::string file = file_;
  std::vector<std::string> lines = utility_.GetIniSection(kMessagesSection, file);
  if (!lines.empty()) lines.pop_back();  // the last element is no line
  return lines;
}

MessageEntry MessageSection::Split(const std::string& line) {
  const Variant pair = utility_.ParseIniKey(line, true);
  return {ToText(pair.At(0)), ToText(pair.At(1))};
}

std::string MessageSection::TextOf(const std::string& line) {
  return ToText(utility_.ParseIniKey(line, false));
}

MessageEntries MessageSection::Entries() {
  MessageEntries entries;
  for (const std::string& line : Lines()) {
    if (!IsBlank(line)) entries.push_back(Split(line));
  }
  return entries;
}

std::string MessageSection::Read(const std::string& key) {
  std::string file = file_;
  return utility_.GetIniKey(kMessagesSection, key, file);
}

void MessageSection::Write(const std::string& key, const std::string& text) {
  std::string file = file_;
  utility_.WriteIniKey(kMessagesSection, key, text, file);
}

void MessageSection::Remove(const UtilityComponent::Key& key) {
  std::string file = file_;
  utility_.WriteIniKey(kMessagesSection, key, std::nullopt, file);
}

std::string MessageSection::ReadOption(const char* key) {
  std::string file = file_;
  return utility_.GetIniKey(kOptionsSection, key, file);
}

void MessageSection::WriteOption(const char* key, const std::string& value) {
  std::string file = file_;
  utility_.WriteIniKey(kOptionsSection, key, value, file);
}

}  // namespace rotacasts
