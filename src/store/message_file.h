// A profile's message file: its messages and its two options.
//
// Section "Messages" holds one line a message, keys "1" to "n" in line order; a message is
// addressed by its position, counted from 0, and its key is position + 1. Section "Options" holds
// "Enable" (0 or 1) and "Interval" (minutes). Nothing is cached: every call goes to the file.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "services/guard.h"
#include "services/window_controls.h"

namespace rotacasts {

inline constexpr const char* kMessagesSection = "Messages";
inline constexpr const char* kOptionsSection = "Options";
inline constexpr const char* kEnableKey = "Enable";
inline constexpr const char* kIntervalKey = "Interval";

/// Characters of a message that the settings window adds at most, and that its list shows.
inline constexpr std::size_t kMessageCharacters = 60;

class MessageFile {
 public:
  MessageFile(HostServices& services, ProfileTables& tables, ErrorReporter& reporter,
              WindowControls& window)
      : services_(services), tables_(tables), reporter_(reporter), window_(window) {}

  /// Fills the settings window's list with the profile's messages, unless the window has come to
  /// show another profile by the time they are read. Reported under "LoadMessages".
  void LoadMessages(std::int32_t profileIndex);
  /// Appends a message; true when it was stored and reads back unchanged. Any error, and a text
  /// with a line break, which no line can hold, gives false; nothing is reported.
  bool AddEntry(std::int32_t profileIndex, const std::string& text);
  /// Removes the entry under the key and renumbers the rest; false after an error of the removal.
  bool DeleteEntry(std::int32_t profileIndex, const std::string& key);

  /// One line of the section "Messages".
  struct Entry {
    std::string key;
    std::string text;
  };
  using Entries = std::vector<Entry>;
  /// Every message, in line order. Raises what fails.
  Entries ReadEntries(std::int32_t profileIndex);
  /// The same in two steps: the lines that hold messages, and what one of them holds.
  std::vector<std::string> ReadLines(std::int32_t profileIndex);
  Entry Split(const std::string& line);
  /// The text under a key; empty when there is none. Raises what fails.
  std::string ReadText(std::int32_t profileIndex, const std::string& key);
  /// Whether the section holds the key. Raises what fails.
  bool HoldsKey(std::int32_t profileIndex, const std::string& key);

  /// Exchanges the texts under two keys and answers them as they stood before; nothing tests that
  /// either key exists. Raises what fails, and undoes nothing.
  struct Exchanged {
    std::string first;
    std::string second;
  };
  Exchanged ExchangeEntries(std::int32_t profileIndex, const std::string& firstKey,
                            const std::string& secondKey);
  /// The texts that shall stand in the file in place of these entries.
  using Arrange = std::function<std::vector<std::string>(const Entries&)>;
  /// Replaces every entry by the texts that `arrange` makes of them, under the keys 1 to n. Raises
  /// what fails; a text that stood in the file before and is among the new ones stands in it at
  /// every moment.
  void ReplaceEntries(std::int32_t profileIndex, const Arrange& arrange);
  /// Writes an option. Raises what fails; error 5 for a value with a line break.
  void SetOption(std::int32_t profileIndex, const char* key, const std::string& value);
  std::string ReadOption(std::int32_t profileIndex, const char* key);

 private:
  /// Renumbers. `file` is the path that the caller took before its first change: should the host
  /// stop the profile meanwhile, what was begun still ends in the same file.
  void RewriteEntries(std::int32_t profileIndex, std::string file);

  HostServices& services_;
  ProfileTables& tables_;
  ErrorReporter& reporter_;
  WindowControls& window_;
};

}  // namespace rotacasts
