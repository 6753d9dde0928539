#include "web/live_events.h"

#include <algorithm>
#include <nlohmann/json.hpp>
#include <utility>

namespace rotacasts::host::web {
namespace {

/// How often a quiet connection sends something, so that both ends notice if it breaks.
constexpr auto kQuiet = std::chrono::seconds(15);

std::string Now() {
  return JsonText({{"now", Milliseconds(Clock::now())}});
}

}  // namespace

void LiveEvents::Add(const char* event, const std::string& data) {
  events_ += std::string("event: ") + event + "\ndata: " + data + "\n\n";
}

std::string LiveEvents::End(const char* event) {
  if (!std::exchange(isOver_, true)) Add(event, "{}");
  return std::exchange(events_, {});
}

void LiveEvents::AddDetails(const Admin& admin) try {
  if (profile_ == 0 || !admin.Sees(profile_)) return;
  const bool isNew = !HasSeen(profile_);
  const Snapshots::Text& messages = snapshots_.MessagesOf(profile_);
  if (isNew || messages.change > seen_) Add("messages", messages.json);
  const Snapshots::Text& log = snapshots_.LogOf(profile_);
  if (snapshots_.MaySeeLog(admin) && (isNew || log.change > seen_)) Add("log", log.json);
} catch (const RuntimeError&) {  // the profile is gone; its row says so
}

void LiveEvents::AddRows(const Admin& admin) {
  for (const auto& [index, row] : snapshots_.LatestRows()) {
    const bool isThere = !row.json.empty() && admin.Sees(index);
    const bool hasChanged = row.change > seen_;
    if (isThere && (hasChanged || !HasSeen(index))) Add("profile", row.json);
    if (!isThere && HasSeen(index) && (hasChanged || !row.json.empty())) {
      Add("gone", std::to_string(index));
    }
  }
}

std::string LiveEvents::Next() {
  const auto admin = person_();
  if (!admin) return End("end");
  if (follower_->isReplaced) return End("elsewhere");
  const bool isFirst = !known_;
  if (known_ != admin) Add("person", JsonText(DescriptionOf(*admin)));
  AddDetails(*admin);
  AddRows(*admin);
  known_ = admin;
  seen_ = snapshots_.Change();
  if (isFirst) Add("ready", Now());
  if (events_.empty() && Clock::now() - spokenAt_ >= kQuiet) Add("still", Now());
  if (!events_.empty()) spokenAt_ = Clock::now();
  return std::exchange(events_, {});
}

}  // namespace rotacasts::host::web
