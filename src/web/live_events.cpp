#include "web/live_events.h"

#include <utility>

namespace rotacasts::host::web {
namespace {

/// How often a quiet connection sends something, so that both ends notice if it breaks.
constexpr auto kQuiet = std::chrono::seconds(15);

}  // namespace

void LiveEvents::Add(const char* event, const Snapshots::Text& text) {
  if (text.change <= seen_) return;
  events_ += std::string("event: ") + event + "\ndata: " + text.json + "\n\n";
}

void LiveEvents::AddDetails(const Admin& admin) try {
  if (profile_ == 0 || !admin.Sees(profile_)) return;
  Add("messages", snapshots_.MessagesOf(profile_));
  const Snapshots::Text& log = snapshots_.LogOf(profile_);
  if (snapshots_.MaySeeLog(admin)) Add("log", log);
} catch (const RuntimeError&) {  // the profile is gone; its row says so
}

std::string LiveEvents::Next() {
  const auto admin = person_();
  if (!admin) {
    if (std::exchange(isOver_, true)) return {};
    return "event: end\ndata: {}\n\n";
  }
  AddDetails(*admin);
  for (const auto& [index, row] : snapshots_.LatestRows()) {
    if (!admin->Sees(index)) continue;
    if (!row.json.empty()) {
      Add("profile", row);
    } else if (seen_ > 0) {
      Add("gone", {std::to_string(index), row.change});
    }
  }
  if (seen_ == 0) events_ += "event: ready\ndata: {}\n\n";
  seen_ = std::max<std::int64_t>(snapshots_.Change(), 1);
  if (events_.empty() && Clock::now() - spokenAt_ >= kQuiet) events_ = "event: still\ndata: {}\n\n";
  if (!events_.empty()) spokenAt_ = Clock::now();
  return std::exchange(events_, {});
}

}  // namespace rotacasts::host::web
