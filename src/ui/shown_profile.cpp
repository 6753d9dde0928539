#include "ui/shown_profile.h"

#include "services/guard.h"

namespace rotacasts {

ShownProfile::ShownProfile(const SettingsWindow& settings, const ProfileTables& tables,
                           std::int32_t profile)
    : settings_(settings),
      tables_(tables),
      profile_(profile),
      file_(PathOfFile()),
      window_(settings.IfLoaded()),
      fillings_(window_ ? window_->Messages().Fillings() : 0) {}

frmRT& ShownProfile::Window() const {
  if (!window_ || Now() != window_) throw Overtaken();
  return *window_;
}

std::shared_ptr<frmRT> ShownProfile::Now() const {
  const bool isShown = tables_.currentWindowProfile == profile_ && PathOfFile() == file_;
  return isShown ? settings_.IfLoaded() : nullptr;
}

bool ShownProfile::WasFilled() const {
  const std::shared_ptr<frmRT> now = Now();
  return now && (now != window_ || now->Messages().Fillings() != fillings_);
}

std::string ShownProfile::PathOfFile() const try {
  return tables_.MessageFiles(profile_);
} catch (const RuntimeError&) {
  return {};
}

}  // namespace rotacasts
