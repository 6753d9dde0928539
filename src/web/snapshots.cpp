#include "web/snapshots.h"

#include <algorithm>
#include <nlohmann/json.hpp>

#include "base/text.h"
#include "broadcast/placeholders.h"
#include "broadcast/schedule.h"
#include "files/native_files.h"
#include "siblings/plain_words.h"
#include "store/admin_log.h"
#include "web/without_paths.h"

namespace rotacasts::host::web {
namespace {

using nlohmann::json;
using namespace std::chrono_literals;

constexpr auto kFresh = 1s;
constexpr auto kUnreachable = 5s;        // before looking again for a server that was not found
constexpr auto kForReading = 3ms;        // for placeholders' texts at a time, because ticks wait
constexpr std::size_t kMostSent = 30;    // shown for each profile
constexpr std::size_t kMostLines = 100;  // of the log

constexpr const char* kGames[] = {"unreachable", "idle", "running"};
constexpr const char* kOutcomes[] = {"under way", "sent", "failed"};

json NextOf(const ProfileStatus& status) {
  if (!status.position) return nullptr;
  return {{"position", *status.position},
          {"text", status.message},
          {"at", status.due ? json(Milliseconds(*status.due)) : json()}};
}

/// The interval as the timer computes it; null if every tick fails at it.
json MinutesOf(const ProfileStatus& status) try {
  return TicksUntilDue(status.interval, 0);
} catch (const RuntimeError&) {
  return nullptr;
}

json RowOf(const ProfileStatus& status, const std::string& folder) {
  return {{"index", status.profile.index},
          {"folder", status.profile.folder},
          {"gameCode", status.profile.gameCode},
          {"game", kGames[static_cast<int>(status.game.state)]},
          {"stopped", status.isStopped},
          {"on", status.isSwitchedOn},
          {"interval", status.interval},
          {"minutes", MinutesOf(status)},
          {"failing", WithoutPaths(status.failing, folder)},
          {"messages", status.messages},
          {"next", NextOf(status)},
          {"problem",
           WithoutPaths(status.problem.empty() ? status.game.problem : status.problem, folder)}};
}

json JsonOf(const host::SentText& sent, const std::string& folder) {
  return {{"number", sent.number},
          {"time", FormatTime(sent.time)},
          {"text", sent.text},
          {"outcome", kOutcomes[static_cast<int>(sent.outcome)]},
          {"reason", WithoutPaths(sent.reason, folder)}};
}

}  // namespace

std::int64_t Milliseconds(std::chrono::steady_clock::time_point time) {
  return std::chrono::duration_cast<std::chrono::milliseconds>(time.time_since_epoch()).count();
}

json DescriptionOf(const Admin& admin) {
  json rights = json::array();
  for (const Right right : admin.rights) rights.push_back(NameOf(right));
  return {{"name", admin.name},
          {"rights", rights},
          {"now", Milliseconds(std::chrono::steady_clock::now())}};
}

std::string JsonText(const json& value) {
  return value.dump(-1, ' ', false, json::error_handler_t::replace);
}

void Snapshots::Update(Text& text, const json& value) {
  std::string fresh = value.is_null() ? "" : JsonText(value);
  text.at = Clock::now();
  if (text.change != 0 && fresh == text.json) return;
  text.json = std::move(fresh);
  text.change = ++change_;
}

const Preview::Game& Snapshots::GameOf(const ProfileSettings& profile) {
  KnownGame& known = games_[profile.index];
  const Clock::time_point now = Clock::now();
  const bool isUnreachable = known.game.state == Preview::Game::State::Unreachable;
  if (!isUnreachable || now - known.at >= kUnreachable) {
    known = {host_.Previews().GameOf(profile), now};
  }
  return known.game;
}

void Snapshots::RefreshRow(std::int32_t index) {
  const auto& all = host_.Profiles().All();
  const auto profile = all.find(index);
  const bool isThere = profile != all.end();
  Update(rows_[index],
         isThere ? RowOf(host_.StatusOf(index, GameOf(profile->second)), host_.Profiles().Folder())
                 : json());
}

const Snapshots::Rows& Snapshots::FreshRows() {
  const Clock::time_point limit = Clock::now() - kFresh;
  for (const auto& [index, profile] : host_.Profiles().All()) rows_[index];
  for (const auto& [index, row] : rows_) {
    if (row.at < limit) RefreshRow(index);
  }
  return rows_;
}

void Snapshots::RefreshSome() {
  for (const auto& [index, profile] : host_.Profiles().All()) rows_[index];
  for (std::size_t left = (rows_.size() + 9) / 10; left > 0; --left) {
    auto next = rows_.upper_bound(lastRefreshed_);
    if (next == rows_.end()) next = rows_.begin();
    lastRefreshed_ = next->first;
    RefreshRow(next->first);
  }
}

void Snapshots::RefreshLive(const ProfileSettings& profile, const MessageList& list,
                            Messages& known) {
  std::map<std::string, Live> live;
  for (const MessageList::Message& message : list.messages) {
    if (IsPlaceholder(message.text)) live[message.text] = known.live[message.text];
  }
  known.live = std::move(live);
  std::vector<std::map<std::string, Live>::value_type*> oldestFirst;
  for (auto& entry : known.live) oldestFirst.push_back(&entry);
  std::stable_sort(oldestFirst.begin(), oldestFirst.end(),
                   [](const auto* a, const auto* b) { return a->second.at < b->second.at; });
  const Preview::Game& game = GameOf(profile);
  const Clock::time_point begin = Clock::now();
  for (auto* entry : oldestFirst) {
    if (Clock::now() - begin > kForReading) break;
    entry->second = {host_.Previews().TextOf(profile, game, entry->first), Clock::now()};
    if (game.state == Preview::Game::State::Unreachable) entry->second.text.problem.clear();
  }
}

json Snapshots::List(const ProfileSettings& profile, Messages& known) {
  json rows = json::array();
  std::string problem;
  try {
    const MessageList list = host_.MessagesOf(profile.index);
    RefreshLive(profile, list, known);
    for (const MessageList::Message& message : list.messages) {
      const auto live = known.live.find(message.text);
      json row = {{"text", message.text},
                  {"says", AsPosted(TrimSpaces(message.text))},
                  {"problem", ""},
                  {"live", live != known.live.end()}};
      if (live != known.live.end()) {
        const bool isRead = live->second.at != Clock::time_point();
        row["says"] = isRead ? json(live->second.text.says) : json();
        row["problem"] = WithoutPaths(live->second.text.problem, host_.Profiles().Folder());
      }
      rows.push_back(std::move(row));
    }
  } catch (const RuntimeError& error) {
    problem = WithoutPaths(PlainWords(error), host_.Profiles().Folder());
  }
  return {{"index", profile.index},
          {"messages", std::move(rows)},
          {"sent", Sent(profile.index)},
          {"problem", problem}};
}

json Snapshots::Sent(std::int32_t index) const {
  json rows = json::array();
  const auto& latest = host_.Profiles().Components().GetChat().LatestOf(index);
  for (auto sent = latest.rbegin(); sent != latest.rend() && rows.size() < kMostSent; ++sent) {
    rows.push_back(JsonOf(*sent, host_.Profiles().Folder()));
  }
  return rows;
}

json Snapshots::SentText(std::int32_t index, std::int64_t number) const {
  const auto& latest = host_.Profiles().Components().GetChat().LatestOf(index);
  const auto sent = std::ranges::find(latest, number, &host::SentText::number);
  return sent != latest.end() ? JsonOf(*sent, host_.Profiles().Folder()) : json();
}

json Snapshots::Log(std::int32_t index) const {
  json log = {{"index", index}, {"shared", host_.IsLogShared()}, {"problem", ""}};
  try {
    const LocalTime today = host_.Profiles().Components().Clock().Now();
    log["lines"] = AdminLog::LatestLines(
        ReadWholeFile(AdminLog::FileIn(host_.LogFolderOf(index), today)).value_or(""), kMostLines);
  } catch (const RuntimeError& error) {
    log["lines"] = json::array();
    log["problem"] = WithoutPaths(PlainWords(error), host_.Profiles().Folder());
  }
  return log;
}

const Snapshots::Text& Snapshots::MessagesOf(std::int32_t index) {
  const ProfileSettings& profile = host_.Profiles().At(index);
  Messages& known = messages_[index];
  if (Clock::now() - known.at >= kFresh) Update(known, List(profile, known));
  return known;
}

const Snapshots::Text& Snapshots::LogOf(std::int32_t index) {
  host_.Profiles().At(index);
  Text& known = logs_[index];
  if (Clock::now() - known.at >= kFresh) Update(known, Log(index));
  return known;
}

void Snapshots::Changed(std::int32_t index) {
  messages_[index].at = logs_[index].at = {};
  RefreshRow(index);
}

}  // namespace rotacasts::host::web
