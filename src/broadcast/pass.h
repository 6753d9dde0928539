// One tick's work on a profile, for as long as nothing has overtaken it.
#pragma once

#include <cstdint>
#include <memory>

#include "services/guard.h"
#include "services/host_services.h"
#include "services/profile_tables.h"
#include "store/settings_view.h"

namespace rotacasts {

/// Begins with a tick. It is overtaken when the profile ticks again, is stopped or loaded again, or
/// when the window goes; all of that can happen inside any component call or box of the tick. What
/// the tick reads, counts and changes is reached through here and only while the pass is current:
/// from then on every access throws Overtaken, and no error is reported.
class Pass final : public MemorySource, public ErrorHandler {
 public:
  /// `window` is the loaded one, or null. Everything else outlives the pass.
  Pass(const MemorySource& memory, ProfileTables& tables, ErrorHandler& errors,
       std::shared_ptr<BroadcastSettings> window, std::int16_t profile)
      : memory_(memory),
        tables_(tables),
        errors_(errors),
        window_(std::move(window)),
        profile_(profile),
        events_(tables.Events[profile]) {
    ++events_.ticks;
    atBegin_ = events_;
  }
  Pass(const Pass&) = delete;
  Pass& operator=(const Pass&) = delete;

  std::int16_t Profile() const { return profile_; }
  BroadcastSettings& Settings() const { return Require(), *window_; }
  ProfileRecord& Record() const { return Require(), tables_.Profiles(profile_); }
  std::int32_t& NextMessage() const { return Require(), tables_.NextMessage(profile_); }
  std::int32_t& ElapsedTicks() const { return Require(), tables_.ElapsedTicks(profile_); }

  // For the readers of the game server.
  MemoryComponent& Memory() const override { return Require(), memory_.Memory(); }
  void ReportError(const Failure& failure) override {
    if (IsCurrent()) errors_.ReportError(failure);
  }

 private:
  bool IsCurrent() const { return window_ && window_->IsLoaded() && events_ == atBegin_; }
  void Require() const {
    if (!IsCurrent()) throw Overtaken();
  }

  const MemorySource& memory_;
  ProfileTables& tables_;
  ErrorHandler& errors_;
  const std::shared_ptr<BroadcastSettings> window_;
  const std::int16_t profile_;
  ProfileEvents& events_;
  ProfileEvents atBegin_;
};

}  // namespace rotacasts
