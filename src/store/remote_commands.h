// The seven operations that a remote administrator reaches through the host.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

#include "store/admin_log.h"
#include "store/message_file.h"
#include "store/settings_view.h"

namespace rotacasts {

/// Lists and changes the messages and options of the profile `Index`. Texts travel as the memory
/// component's Enc64; a position counts from 0. Each change is logged with its last step.
///
/// The result is the reply. An error is reported under the operation's name and ends it; the reply
/// is then what it was by that time, most often empty. A changing operation ends in the message
/// file that it began in; inside, it raises error 9 for a profile that was never set up and 76 for
/// one that is stopped. The settings window follows a change when it is there and shows the
/// commanded profile; an option's value is refused either way where the window's control would
/// refuse it.
class RemoteCommands {
 public:
  /// `setProfileData` stores a profile's data, as LoadInterface does.
  RemoteCommands(HostServices& services, ProfileTables& tables, ErrorHandler& errors,
                 MessageStore& store, SettingsView& window,
                 std::function<void(std::int32_t, const ProfileData&)> setProfileData)
      : services_(services),
        tables_(tables),
        errors_(errors),
        store_(store),
        window_(window),
        log_(services),
        setProfileData_(std::move(setProfileData)) {}

  /// Sets the profile up from `PDAT` and lists it: each message encoded, then "Enable" ("0" when
  /// missing or empty) and "Interval" as stored, all separated by "|". The report of an error
  /// quotes the message file; if that fails in turn, that error is raised to the caller.
  std::string GetMessagesRem(std::int32_t Index, const ProfileData& PDAT);
  /// `Data`: the encoded text. "1" when it is stored, "0" when not; logged either way.
  std::string AddMessageRem(std::int32_t Index, const ProfileData& PDAT, const HostValue& Data);
  /// `Data`: the new value of "Enable". No reply.
  std::string EnableRTRem(std::int32_t Index, const ProfileData& PDAT, const HostValue& Data);
  /// `Data`: the new value of "Interval", minutes. No reply.
  std::string ChangeIntervalRem(std::int32_t Index, const ProfileData& PDAT, const HostValue& Data);
  /// `Data`: the position of the message to move. "1", or "0", unlogged, when it has no neighbour
  /// in that direction.
  std::string MoveMessageDownRem(std::int32_t Index, const ProfileData& PDAT,
                                 const HostValue& Data);
  std::string MoveMessageUpRem(std::int32_t Index, const ProfileData& PDAT, const HostValue& Data);
  /// `Data`: the position of the message to delete. "1", also when there is none.
  std::string DeleteMessageRem(std::int32_t Index, const ProfileData& PDAT, const HostValue& Data);

 private:
  /// Runs an operation under its name; returns the reply that the body has set by its end.
  std::string Run(std::string_view operation, std::int32_t index,
                  const std::function<void(std::string& reply, Step& at)>& body);
  /// `file` becomes the path of the message file once that is known.
  std::string List(std::int32_t index, const ProfileData& PDAT, std::string& file, Step& at);
  /// " [path, lines]" of the message file. Raises what fails.
  std::string QuoteFile(std::string file);
  /// Moves a message by exchanging it with its neighbour; `moved` is its text of the two.
  struct Move;
  std::string MoveMessage(const Move& move, std::int32_t index, const ProfileData& PDAT,
                          const HostValue& Data);

  HostServices& services_;
  ProfileTables& tables_;
  ErrorHandler& errors_;
  MessageStore& store_;
  SettingsView& window_;
  AdminLog log_;
  std::function<void(std::int32_t, const ProfileData&)> setProfileData_;
};

}  // namespace rotacasts
