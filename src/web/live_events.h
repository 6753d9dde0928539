// The events that an open page follows.
#pragma once

#include <functional>

#include "web/http_server.h"
#include "web/sessions.h"
#include "web/snapshots.h"

namespace rotacasts::host::web {

/// Sends every row that the person may see, and the messages and the log of one profile.
class LiveEvents final : public EventSource {
 public:
  /// `person` returns who follows; nullopt once the session has ended. `snapshots` must outlive it.
  LiveEvents(Snapshots& snapshots, std::function<std::optional<Admin>()> person,
             std::int32_t profile)
      : snapshots_(snapshots), person_(std::move(person)), profile_(profile) {}

  std::string Next() override;
  bool IsOver() const override { return isOver_; }

 private:
  void Add(const char* event, const Snapshots::Text& text);
  void AddDetails(const Admin& admin);

  Snapshots& snapshots_;
  const std::function<std::optional<Admin>()> person_;
  const std::int32_t profile_;
  std::int64_t seen_ = 0;
  std::string events_;
  Clock::time_point spokenAt_;
  bool isOver_ = false;
};

}  // namespace rotacasts::host::web
