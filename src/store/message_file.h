// A profile's message file: its messages and its two options.
//
// Section "Messages" holds one line a message, keys "1" to "n" in line order; a message is
// addressed by its position, counted from 0, and its key is position + 1. Section "Options" holds
// "Enable" (0 or 1) and "Interval" (minutes). Nothing is cached: every call goes to the file. A
// stopped profile has no file: what would read or write it raises error 76.
#pragma once

#include <cstdint>
#include <string>

#include "services/guard.h"
#include "services/host_services.h"
#include "services/profile_tables.h"
#include "store/message_section.h"
#include "store/renumbering.h"
#include "store/settings_view.h"

namespace rotacasts {

/// Characters of a message that the settings window adds at most, and that its list shows.
inline constexpr std::size_t kMessageCharacters = 60;

class MessageFile {
 public:
  MessageFile(HostServices& services, ProfileTables& tables, ErrorHandler& errors,
              SettingsView& window)
      : services_(services), tables_(tables), errors_(errors), window_(window) {}

  /// The profile's file, for operations of the caller's own. Error 76 for a stopped profile, 9 for
  /// one that was never set up.
  MessageSection Open(std::int32_t profileIndex);
  /// Whether there is one to open. Error 9 for a profile that was never set up.
  bool HasFile(std::int32_t profileIndex) { return !tables_.MessageFiles(profileIndex).empty(); }

  /// Fills the settings window's list with the profile's messages, unless the window has come to
  /// show another profile by the time they are read. Reported under "LoadMessages".
  void LoadMessages(std::int32_t profileIndex);
  /// Appends a message; true when it was stored and reads back unchanged. Any error, and a text
  /// with a line break, which no line can hold, gives false; nothing is reported.
  bool AddEntry(std::int32_t profileIndex, const std::string& text);
  /// Removes the entry under the key and renumbers the rest; false after an error of the removal.
  bool DeleteEntry(std::int32_t profileIndex, const std::string& key);

  /// Exchanges the texts under two keys and returns them as they stood before; nothing tests that
  /// either key exists. Raises what fails, with the first text put back.
  struct Exchanged {
    std::string first;
    std::string second;
  };
  Exchanged ExchangeEntries(std::int32_t profileIndex, const std::string& firstKey,
                            const std::string& secondKey);
  /// Replaces every message by what `arrange` makes of them; whether there was anything to do.
  /// Raises what fails; see Replace.
  bool ReplaceEntries(std::int32_t profileIndex, const Arrange& arrange);
  /// Writes an option. Raises what fails; error 5 for a value with a line break.
  void SetOption(std::int32_t profileIndex, const char* key, const std::string& value);

 private:
  void RewriteEntries(std::int32_t profileIndex, MessageSection section);

  HostServices& services_;
  ProfileTables& tables_;
  ErrorHandler& errors_;
  SettingsView& window_;
};

}  // namespace rotacasts
