// A profile's message file: its messages and its two options.
//
// Section "Messages" holds one line a message, keys "1" to "n" in line order; a message is
// addressed by its position, counted from 0, and its key is position + 1. Section "Options" holds
// "Enable" (0 or 1) and "Interval" (minutes). Nothing is cached: every call goes to the file.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "services/guard.h"
#include "services/host_services.h"
#include "services/profile_tables.h"
#include "store/message_section.h"

namespace rotacasts {

/// A profile's message file, opened for one operation, which ends in this file whatever becomes of
/// the profile meanwhile.
///
/// A component call can run a message loop in which another operation begins. What changes the list
/// of messages holds the file: the other one is refused (error 70, or false where errors give
/// false) because the first would go on with texts and keys that are no longer there.
class MessageFile : public MessageSection {
 public:
  /// The paths of the files whose lists are being changed.
  using Held = std::set<std::string>;

  MessageFile(MessageSection section, ErrorHandler& errors, std::int32_t profileIndex, Held& held)
      : MessageSection(std::move(section)),
        errors_(errors),
        profileIndex_(profileIndex),
        held_(held) {}

  /// Holds the file, for an operation that changes the list by what it has read of it. Released
  /// before an error is shown.
  class Hold {
   public:
    /// Error 70 while another operation holds the file.
    explicit Hold(MessageFile& file);
    ~Hold();
    Hold(const Hold&) = delete;
    Hold& operator=(const Hold&) = delete;

   private:
    MessageFile& file_;
  };

  /// Appends a message; true when it was stored and reads back unchanged. Any error, and a text
  /// with a line break, which no line can hold, gives false; nothing is reported.
  bool AddEntry(const std::string& text);
  /// Removes the entry under the key and renumbers the rest; false after an error of the removal.
  bool DeleteEntry(const std::string& key);

  /// Exchanges the texts under two keys and returns them as they stood before; nothing if one of
  /// the keys is missing. Raises what fails, with both texts back in their places.
  struct Exchanged {
    std::string first;
    std::string second;
  };
  std::optional<Exchanged> ExchangeEntries(const std::string& firstKey,
                                           const std::string& secondKey);
  /// The texts that are to stand in the file in place of these entries; nothing to leave it alone.
  using Arrange = std::function<std::optional<std::vector<std::string>>(const MessageEntries&)>;
  /// Replaces every message by what `arrange` makes of them. Returns whether there was anything to
  /// do. Raises what fails, with the old texts back where they stood under the keys 1 to n.
  bool ReplaceEntries(const Arrange& arrange);
  /// Writes an option. Raises what fails; error 5 for a value with a line break.
  void SetOption(const char* key, const std::string& value);

 private:
  void RewriteEntries();
  void Renumber(Step& at);
  void Release();

  ErrorHandler& errors_;
  const std::int32_t profileIndex_;
  Held& held_;
  int holds_ = 0;  // of this operation, one inside the other
};

/// Opens the profiles' message files. A stopped profile has none.
class MessageStore {
 public:
  MessageStore(const HostServices& services, ProfileTables& tables, ErrorHandler& errors)
      : services_(services), tables_(tables), errors_(errors) {}

  /// Error 76 for a stopped profile, 9 for one that was never set up.
  MessageFile Open(std::int32_t profileIndex);
  /// As MessageFile's, with false for a profile that has no file, too.
  bool AddEntry(std::int32_t profileIndex, const std::string& text);
  /// Whether there is one to open. Error 9 for a profile that was never set up.
  bool HasFile(std::int32_t profileIndex) { return !tables_.MessageFiles(profileIndex).empty(); }

 private:
  const HostServices& services_;
  ProfileTables& tables_;
  ErrorHandler& errors_;
  MessageFile::Held held_;
};

}  // namespace rotacasts
