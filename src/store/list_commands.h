// Operations on a list of messages for hosts that know more than the remote ones.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "store/admin_log.h"
#include "store/message_file.h"
#include "store/settings_view.h"

namespace rotacasts {

/// Changes the list of the profile `index` as RemoteCommands does: each operation ends in the
/// message file that it began in, the settings window follows, and the log has a line. Positions
/// count from 0. The result is "1", or "0", unlogged, for a position without a message and a text
/// with a line break. An error is reported under the operation's name and leaves the result empty,
/// or as it was when the log could not be written.
///
/// No members of the component: an existing host finds what it always found.
class ListCommands {
 public:
  ListCommands(HostServices& services, ErrorHandler& errors, MessageStore& store,
               SettingsView& window)
      : errors_(errors), store_(store), window_(window), log_(services) {}

  /// Gives the message at the position another text.
  std::string ChangeMessage(std::int32_t index, const ProfileData& PDAT, std::size_t position,
                            const std::string& text);
  /// Puts the message at the position `to`; behind the end this is the last one.
  std::string PlaceMessage(std::int32_t index, const ProfileData& PDAT, std::size_t position,
                           std::size_t to);
  /// Adds messages before the one at the position, or at the end, each with its line in the log.
  std::string InsertMessages(std::int32_t index, const ProfileData& PDAT, std::size_t position,
                             const std::vector<std::string>& texts);

 private:
  /// What a change came to in the file: whether it was possible, and what the log says of it.
  struct Outcome {
    bool isDone = false;
    std::vector<std::string> logged = {};
  };
  using Change = std::function<Outcome(MessageFile&)>;
  std::string Run(std::string_view operation, std::string_view action, std::int32_t index,
                  const ProfileData& PDAT, const Change& change);

  ErrorHandler& errors_;
  MessageStore& store_;
  SettingsView& window_;
  AdminLog log_;
};

}  // namespace rotacasts
