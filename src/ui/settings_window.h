// The one settings window: made when the host shows or hides it, made again when it is gone.
#pragma once

#include <functional>
#include <memory>

#include "ui/frm_rt.h"

namespace rotacasts {

class SettingsWindow final : public SettingsView {
 public:
  SettingsWindow(HostServices& services, ProfileTables& tables, ErrorReporter& reporter,
                 MessageStore& store)
      : context_{services, tables, reporter, store, *this} {}

  /// The tick of a profile's timer element.
  std::function<void(std::int16_t)> onTick;

  /// The loaded window; made and loaded first, hidden, where there is none or where its parent or
  /// its thread has taken it along. Raises what the platform refuses.
  std::shared_ptr<frmRT> Get();
  /// The loaded window, or null.
  std::shared_ptr<frmRT> IfLoaded() const;
  /// Destroys the window, if there is one, and with it every timer element.
  void Unload();

  std::shared_ptr<BroadcastSettings> Loaded() const override { return IfLoaded(); }
  std::unique_ptr<ShownSettings> Showing(std::int32_t profile) override;

 private:
  const SettingsWindowContext context_;
  std::shared_ptr<frmRT> window_;
};

}  // namespace rotacasts
