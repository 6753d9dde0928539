// The events that an open page follows.
#pragma once

#include <functional>
#include <memory>

#include "web/http_server.h"
#include "web/sessions.h"
#include "web/snapshots.h"

namespace rotacasts::host::web {

/// Who follows the events of one open page. Whoever opens too many pages loses the oldest.
struct Follower {
  std::string person;
  std::string client;  // the address
  bool isReplaced = false;
};

/// Sends who the person is, every row that they may see, and the messages and the log of one
/// profile. A change of their rights shows at once.
class LiveEvents final : public EventSource {
 public:
  /// `person` returns who follows; nullopt once the session has ended. `snapshots` must outlive it.
  LiveEvents(Snapshots& snapshots, std::function<std::optional<Admin>()> person,
             std::int32_t profile, std::shared_ptr<Follower> follower)
      : snapshots_(snapshots),
        person_(std::move(person)),
        profile_(profile),
        follower_(std::move(follower)) {}

  std::string Next() override;
  bool IsOver() const override { return isOver_; }

 private:
  void Add(const char* event, const std::string& data);
  /// Ends the events with this one.
  std::string End(const char* event);
  void AddRows(const Admin& admin);
  void AddDetails(const Admin& admin);
  /// Whether the person saw the profile when events were last sent.
  bool HasSeen(std::int32_t profile) const { return known_ && known_->Sees(profile); }

  Snapshots& snapshots_;
  const std::function<std::optional<Admin>()> person_;
  const std::int32_t profile_;
  const std::shared_ptr<Follower> follower_;
  std::optional<Admin> known_;  // as the page knows the person; nullopt before the first events
  std::int64_t seen_ = 0;
  std::string events_;
  Clock::time_point spokenAt_;
  bool isOver_ = false;
};

}  // namespace rotacasts::host::web
