#include "ui/shown_profile.h"

#include "services/guard.h"

namespace rotacasts {

ShownProfile::ShownProfile(std::shared_ptr<frmRT> window, const ProfileTables& tables,
                           std::int32_t profile)
    : window_(std::move(window)), tables_(tables), profile_(profile), file_(PathOfFile()) {}

frmRT& ShownProfile::Window() const {
  if (!IsCurrent()) throw Overtaken();
  return *window_;
}

bool ShownProfile::IsCurrent() const {
  return window_ && window_->IsLoaded() && tables_.currentWindowProfile == profile_ &&
         PathOfFile() == file_;
}

std::string ShownProfile::PathOfFile() const try {
  return tables_.MessageFiles(profile_);
} catch (const RuntimeError&) {
  return {};
}

}  // namespace rotacasts
