#include "plugin/embedding.h"

#include "base/arithmetic.h"
#include "base/conversions.h"
#include "ui/layout.h"

namespace rotacasts {
namespace {

// Where the settings window lies in the host's window, in pixels: below the host's own heading, and
// that much less high than the host's area.
constexpr std::int32_t kLeft = 2;
constexpr std::int32_t kTop = 30;

/// Whole pixels in a length of twips, by the display's real factor, which need not be whole.
std::int32_t WholePixels(std::int32_t twips, double twipsPerPixel) {
  constexpr double kRoundingError = 1e-9;  // 7200 / (1440 / 168.0) is 840
  return static_cast<std::int32_t>(twips / twipsPerPixel + kRoundingError);
}

}  // namespace

/// A load under way. The profile can be stopped, and the window can go, inside each of its calls
/// and boxes; that ends the load.
class Embedding::Load {
 public:
  Load(ProfileTables& tables, SettingsWindow& settings, std::int32_t index)
      : settings_(settings), events_(tables.Events[index]), stopsBefore_(events_.stops) {
    ++tables.Events[index].loads;
  }
  /// The window, made where there is none.
  frmRT& MakeWindow() {
    if (events_.stops == stopsBefore_) window_ = settings_.Get();
    return Window();
  }
  frmRT& Window() const {
    if (events_.stops != stopsBefore_ || !window_->IsLoaded()) throw Overtaken();
    return *window_;
  }

 private:
  SettingsWindow& settings_;
  const ProfileEvents& events_;
  const std::uint32_t stopsBefore_;
  std::shared_ptr<frmRT> window_;
};

void Embedding::LoadInterface(std::int32_t Index, forms::WindowHandle PHWND,
                              const ProfileData& PDAT) {
  if (Index == 0) return;
  Guard(errors_, {"LoadInterface", Index}, [&](Step& at) {
    Load load(tables_, window_, Index);
    at(2);
    profiles_.SetProfileData(Index, PDAT);
    at(3);
    tables_.currentWindowProfile = Index;
    at(4);
    forms::Toolkit& toolkit = services_.Toolkit();
    load.MakeWindow();
    at(5);
    const forms::TwipsPerPixel screen = toolkit.ScreenTwipsPerPixel();
    const std::int32_t width = WholePixels(PDAT.AreaWidth(), screen.horizontal);
    const Checked height = WholePixels(PDAT.AreaHeight(), screen.vertical);
    toolkit.MoveWindow(load.Window().Handle(), kLeft, kTop, width,
                       (height - layout::kHeadingHeight).Value(), true);
    at(6);
    toolkit.SetParent(load.Window().Handle(), PHWND);
    at(7);
    load.Window().Form_Reload();
    at(8);
    if (!ResumeNext({ErrorNumber::CannotShowModeless}, [&] { load.Window().Show(); })) return;
    at(9);
    StartTimer(Index, load.Window());
  });
}

void Embedding::StartTimer(std::int32_t index, frmRT& window) {
  const std::int16_t element = ToInteger(index);
  ResumeNext({ErrorNumber::ObjectAlreadyLoaded}, [&] { window.Timers().Load(element); });
  window.Timers().SetInterval(element, kTimerInterval);
  window.Timers().SetEnabled(element, true);
}

void Embedding::HideInterface() {
  window_.Get()->Hide();
}

void Embedding::UnLoadInterface() {
  constexpr std::int32_t kNoProfile = 0;
  Guard(errors_, {"UnLoadInterface", kNoProfile}, [&](Step& at) {
    at(1);
    profiles_.ResetRunTimeTables();
    at(2);
    window_.Unload();
  });
}

}  // namespace rotacasts
