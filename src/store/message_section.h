// A profile's message file, opened for one operation.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/components.h"
#include "store/options.h"

namespace rotacasts {

inline constexpr const char* kMessagesSection = "Messages";
inline constexpr const char* kOptionsSection = "Options";

/// A message: a line of the section "Messages".
struct MessageEntry {
  std::string key;
  std::string text;
};
using MessageEntries = std::vector<MessageEntry>;

/// The INI calls on one message file. Nothing is kept but the path, so an operation ends in the
/// file that it began in, whatever becomes of the profile meanwhile. Every member raises what its
/// call raises.
class MessageSection {
 public:
  /// The component outlives the section.
  MessageSection(UtilityComponent& utility, std::string file)
      : utility_(utility), file_(std::move(file)) {}

  /// The lines of the section, blank ones included.
  std::vector<std::string> Lines();
  /// Key and text of a line, which is used up unless an error is raised; and the text alone.
  MessageEntry Split(std::string&& line);
  std::string TextOf(const std::string& line);
  /// The lines that are not blank, split.
  MessageEntries Entries();

  /// The text under a key; empty when there is none.
  std::string Read(const std::string& key);
  void Write(const std::string& key, std::string text);
  void Remove(const UtilityComponent::Key& key);

  std::string ReadOption(const char* key);
  void WriteOption(const char* key, const std::string& value);

  /// The file's path.
  const std::string& File() const { return file_; }

 private:
  /// The path for one call: what a component makes of it is not relied on.
  std::string& Path() { return path_ = file_; }

  UtilityComponent& utility_;
  const std::string file_;
  std::string path_;
};

bool IsBlank(std::string_view text);
/// The key of a "key=value" line, without asking the component for every line of a long list.
std::string KeyOf(const std::string& line);
/// The key as a number; nothing for one that a hand has edited into something else.
std::optional<std::int32_t> KeyNumber(const std::string& key);
/// A line's key as the INI writer removes it: the number, or a hand-edited key as it is spelled.
UtilityComponent::Key KeyToRemove(const std::string& key);
/// The key of the message at a position.
std::string KeyAt(std::size_t position);

}  // namespace rotacasts
