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
std::int32_t WholePixels(const HostValue& twips, double twipsPerPixel) {
  constexpr double kRoundingError = 1e-9;  // 7200 / (1440 / 168.0) is 840
  return static_cast<std::int32_t>(ToLong(twips) / twipsPerPixel + kRoundingError);
}

}  // namespace

void Embedding::LoadInterface(std::int32_t Index, forms::WindowHandle PHWND,
                              const HostValue& PDAT) {
  if (Index == 0) return;
  Guard(errors_, {"LoadInterface", Index}, [&](Step& at) {
    at(2);
    profiles_.SetProfileData(Index, PDAT);
    at(3);
    tables_.currentWindowProfile = Index;
    at(4);
    forms::Toolkit& toolkit = services_.Toolkit();
    const std::shared_ptr<frmRT> window = window_.Get();
    at(5);
    const forms::TwipsPerPixel screen = toolkit.ScreenTwipsPerPixel();
    const std::int32_t width = WholePixels(PDAT.At(pdat::kAreaWidth), screen.horizontal);
    const Checked height = WholePixels(PDAT.At(pdat::kAreaHeight), screen.vertical);
    toolkit.MoveWindow(window->Handle(), kLeft, kTop, width,
                       (height - layout::kHeadingHeight).Value(), true);
    at(6);
    toolkit.SetParent(window->Handle(), PHWND);
    at(7);
    window->Form_Reload();
    at(8);
    if (!ResumeNext({ErrorNumber::CannotShowModeless}, [&] { window->Show(); })) return;
    at(9);
    StartTimer(Index, *window);
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
