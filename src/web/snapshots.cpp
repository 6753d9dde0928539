#include "web/snapshots.h"

#include <algorithm>
#include <nlohmann/json.hpp>

#include "base/conversions.h"
#include "base/text.h"
#include "broadcast/placeholders.h"
#include "broadcast/schedule.h"
#include "machine/native_files.h"
#include "services/host_folder.h"
#include "store/admin_log.h"

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

/// A moment of the steady clock in milliseconds since 1970; always the same for the same moment.
std::int64_t Epoch(std::chrono::steady_clock::time_point time) {
  static const auto offset = std::chrono::system_clock::now().time_since_epoch() -
                             std::chrono::steady_clock::now().time_since_epoch();
  return std::chrono::duration_cast<std::chrono::milliseconds>(time.time_since_epoch() + offset)
      .count();
}

double Number(const std::string& text) {
  return IsNumeric(text) ? ToDouble(text) : 0;
}

}  // namespace

std::string ToText(const json& value) {
  return value.dump(-1, ' ', false, json::error_handler_t::replace);
}

void Snapshots::Take(Text& text, const json& value) {
  std::string fresh = value.is_null() ? "" : ToText(value);
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

json Snapshots::Next(const HostedPlugin::Progress& progress, const MessageList& list,
                     bool isCasting) const {
  if (list.messages.empty()) return nullptr;
  const auto position = static_cast<std::size_t>(
      NextPosition(progress.nextMessage, static_cast<std::int32_t>(list.messages.size())));
  json at = nullptr;
  if (isCasting && progress.ticksLeft > 0) {
    at = Epoch(progress.nextTick + (progress.ticksLeft - 1) * options_.minute);
  }
  return {{"position", position}, {"text", list.messages[position].text}, {"at", at}};
}

json Snapshots::Row(const ProfileSettings& profile) {
  const Preview::Game& game = GameOf(profile);
  const auto progress = host_.ProgressOf(profile.index).value_or(HostedPlugin::Progress());
  json row = {{"index", profile.index},
              {"folder", profile.folder},
              {"gameCode", profile.gameCode},
              {"game", kGames[static_cast<int>(game.state)]},
              {"stopped", !progress.isStarted},
              {"on", progress.isSwitchedOn},
              {"interval", progress.interval},
              {"messages", 0},
              {"next", nullptr},
              {"problem", game.problem}};
  try {
    const MessageList list = host_.MessagesOf(profile.index);
    if (!progress.isStarted) {
      row["on"] = Number(list.enable) == 1;
      row["interval"] = list.interval;
    }
    row["messages"] = list.messages.size();
    row["next"] = Next(
        progress, list,
        progress.isStarted && progress.isSwitchedOn && game.state == Preview::Game::State::Running);
  } catch (const RuntimeError& error) {
    row["problem"] = error.description;
  }
  return row;
}

void Snapshots::RefreshRow(std::int32_t index) {
  const auto& all = host_.Profiles().All();
  const auto profile = all.find(index);
  Take(rows_[index], profile != all.end() ? Row(profile->second) : json());
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
        row["problem"] = live->second.text.problem;
      }
      rows.push_back(std::move(row));
    }
  } catch (const RuntimeError& error) {
    problem = error.description;
  }
  return {{"index", profile.index},
          {"messages", std::move(rows)},
          {"sent", Sent(profile.index)},
          {"problem", problem}};
}

json Snapshots::Sent(std::int32_t index) const {
  json rows = json::array();
  const auto& latest = host_.Profiles().Components().GetChat().Latest();
  for (auto sent = latest.rbegin(); sent != latest.rend() && rows.size() < kMostSent; ++sent) {
    if (sent->profile != index) continue;
    rows.push_back({{"number", sent->number},
                    {"time", FormatTime(sent->time)},
                    {"text", sent->text},
                    {"outcome", kOutcomes[static_cast<int>(sent->outcome)]},
                    {"reason", sent->reason}});
  }
  return rows;
}

json Snapshots::Log(const ProfileSettings& profile) const {
  const HostFolder paths(host_.Profiles().Folder());
  const std::string folder =
      options_.sharedLog ? paths.AdminLogs() : paths.AdminLogs(profile.folder);
  json log = {{"index", profile.index}, {"shared", options_.sharedLog}, {"problem", ""}};
  try {
    const LocalTime today = host_.Profiles().Components().Clock().Now();
    log["lines"] = AdminLog::LatestLines(
        ReadWholeFile(AdminLog::FileIn(folder, today)).value_or(""), kMostLines);
  } catch (const RuntimeError& error) {
    log["lines"] = json::array();
    log["problem"] = error.description;
  }
  return log;
}

const Snapshots::Text& Snapshots::MessagesOf(std::int32_t index) {
  const ProfileSettings& profile = host_.Profiles().At(index);
  Messages& known = messages_[index];
  if (Clock::now() - known.at >= kFresh) Take(known, List(profile, known));
  return known;
}

const Snapshots::Text& Snapshots::LogOf(std::int32_t index) {
  const ProfileSettings& profile = host_.Profiles().At(index);
  Text& known = logs_[index];
  if (Clock::now() - known.at >= kFresh) Take(known, Log(profile));
  return known;
}

void Snapshots::Changed(std::int32_t index) {
  messages_[index].at = logs_[index].at = {};
  RefreshRow(index);
}

}  // namespace rotacasts::host::web
