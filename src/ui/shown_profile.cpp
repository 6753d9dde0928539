#include "ui/shown_profile.h"

#include "services/guard.h"

namespace rotacasts {

ShownProfile::ShownProfile(const SettingsWindow& settings, const ProfileTables& tables,
                           std::int32_t profile)
    : settings_(settings),
      tables_(tables),
      profile_(profile),
      file_(PathOfFile()),
      first_(settings.IfLoaded()),
      fillings_(first_ ? first_->Messages().Fillings() : 0) {}

frmRT& ShownProfile::Window() const {
  last_ = Current();
  if (!last_) throw Overtaken();
  return *last_;
}

bool ShownProfile::WasFilled() const {
  const std::shared_ptr<frmRT> window = Current();
  return window && (window != first_ || window->Messages().Fillings() != fillings_);
}

std::shared_ptr<frmRT> ShownProfile::Current() const {
  const bool isShown = tables_.currentWindowProfile == profile_ && PathOfFile() == file_;
  return isShown ? settings_.IfLoaded() : nullptr;
}

std::string ShownProfile::PathOfFile() const try {
  return tables_.MessageFiles(profile_);
} catch (const RuntimeError&) {
  return {};
}

}  // namespace rotacasts
