// What the page shows, as JSON texts that are made again when it is time and shared by all pages.
#pragma once

#include <chrono>
#include <cstdint>
#include <map>
#include <nlohmann/json_fwd.hpp>
#include <string>

#include "host/server_host.h"

namespace rotacasts::host::web {

/// A row of each profile; its messages and its log only where somebody looks at it. Every text has
/// the number of the change that it came with, so that whoever keeps a number knows what is new.
/// Little is read at a time, because what people look at must not put off what players are sent.
class Snapshots {
 public:
  using Clock = std::chrono::steady_clock;

  Snapshots(ServerHost& host, const HostOptions& options) : host_(host), options_(options) {}

  struct Text {
    std::string json;  // of a row: empty once the profile is gone
    std::int64_t change = 0;
    Clock::time_point at = {};  // when it was last made
  };
  using Rows = std::map<std::int32_t, Text>;

  /// The number of the latest change.
  std::int64_t Change() const { return change_; }
  /// As RefreshSome has left them.
  const Rows& LatestRows() const { return rows_; }
  // A second old at most. Error 5 for an index that no profile has.
  const Rows& FreshRows();
  const Text& MessagesOf(std::int32_t index);
  const Text& LogOf(std::int32_t index);

  /// Makes a tenth of the rows again, each time the next ones.
  void RefreshSome();
  /// What is known of the profile is out of date.
  void Changed(std::int32_t index);

 private:
  /// What a placeholder said, and when.
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

  void Take(Text& text, const nlohmann::json& value);
  void RefreshRow(std::int32_t index);
  nlohmann::json Row(const ProfileSettings& profile);
  nlohmann::json Next(const HostedPlugin::Progress& progress, const MessageList& list,
                      bool isCasting) const;
  nlohmann::json List(const ProfileSettings& profile, Messages& known);
  nlohmann::json Sent(std::int32_t index) const;
  nlohmann::json Log(const ProfileSettings& profile) const;
  const Preview::Game& GameOf(const ProfileSettings& profile);
  void RefreshLive(const ProfileSettings& profile, const MessageList& list, Messages& known);

  ServerHost& host_;
  const HostOptions& options_;
  std::int64_t change_ = 0;
  Rows rows_;
  std::int32_t lastRefreshed_ = 0;
  std::map<std::int32_t, Messages> messages_;
  std::map<std::int32_t, Text> logs_;
  std::map<std::int32_t, KnownGame> games_;
};

/// As JSON; bytes that are no UTF-8 are replaced.
std::string ToText(const nlohmann::json& value);

}  // namespace rotacasts::host::web
