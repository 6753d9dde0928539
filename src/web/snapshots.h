// What the page shows, as JSON texts that are renewed when they are old and shared by all pages.
#pragma once

#include <chrono>
#include <cstdint>
#include <map>
#include <nlohmann/json_fwd.hpp>
#include <string>

#include "host/server_host.h"
#include "web/admins.h"

namespace rotacasts::host::web {

/// Holds a row for each profile, and the messages and log of the profiles that somebody looks at.
/// Every text has the number of the change that it came with, so that a reader with an older number
/// knows what is new. Little is read at a time, because what people look at must not delay what
/// players are sent.
class Snapshots {
 public:
  using Clock = std::chrono::steady_clock;

  explicit Snapshots(ServerHost& host) : host_(host) {}

  struct Text {
    std::string json;  // a row is empty once its profile is gone
    std::int64_t change = 0;
    Clock::time_point at = {};  // when it was last renewed
  };
  using Rows = std::map<std::int32_t, Text>;

  /// The number of the latest change.
  std::int64_t Change() const { return change_; }
  /// The rows as RefreshSome left them.
  const Rows& LatestRows() const { return rows_; }
  // At most a second old. Errors: 5 if no profile has the index.
  const Rows& FreshRows();
  const Text& MessagesOf(std::int32_t index);
  const Text& LogOf(std::int32_t index);

  /// What became of a text that was posted for the profile; null if the host no longer knows.
  nlohmann::json SentText(std::int32_t index, std::int64_t number) const;

  /// Renews a tenth of the rows, the next tenth each time.
  void RefreshSome();
  /// Marks the profile's texts as out of date and renews its row.
  void Changed(std::int32_t index);

  /// Whether the person, who may see the profile, may see its log.
  bool MaySeeLog(const Admin& admin) const { return admin.seesAll || !host_.IsLogShared(); }

 private:
  /// What a placeholder said and when.
  struct Live {
    Preview::Text text;
    Clock::time_point at;
  };
  struct Messages : Text {
    std::map<std::string, Live> live;
  };
  struct KnownGame {
    Preview::Game game;
    Clock::time_point at;
  };

  void Update(Text& text, const nlohmann::json& value);
  void RefreshRow(std::int32_t index);
  nlohmann::json List(const ProfileSettings& profile, Messages& known);
  nlohmann::json Sent(std::int32_t index) const;
  nlohmann::json Log(std::int32_t index) const;
  const Preview::Game& GameOf(const ProfileSettings& profile);
  void RefreshLive(const ProfileSettings& profile, const MessageList& list, Messages& known);

  ServerHost& host_;
  std::int64_t change_ = 0;
  Rows rows_;
  std::int32_t lastRefreshed_ = 0;
  std::map<std::int32_t, Messages> messages_;
  std::map<std::int32_t, Text> logs_;
  std::map<std::int32_t, KnownGame> games_;
};

/// The value as JSON text; invalid UTF-8 is replaced.
std::string JsonText(const nlohmann::json& value);

/// A moment on the page's clock: milliseconds of one that nobody can set.
std::int64_t Milliseconds(std::chrono::steady_clock::time_point time);
/// The person's name and rights, and the present moment.
nlohmann::json DescriptionOf(const Admin& admin);

}  // namespace rotacasts::host::web
