// The form toolkit without pixels: forms work, nothing is drawn.
//
// Message boxes go to a function, popup menus ask a function for the choice, timers run in a
// TimerLoop, and the edit and list messages are interpreted on the model itself.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <string>

#include "forms/form.h"
#include "forms/headless/timer_loop.h"

namespace rotacasts::headless {

/// Height of a list row in pixels, the same for every list: what a list box of the window's font
/// has.
inline constexpr std::int32_t kRowHeight = 13;

/// Where a window lies: what MoveWindow and SetParent were told last.
struct Placement {
  std::int32_t x = 0;
  std::int32_t y = 0;
  std::int32_t width = 0;
  std::int32_t height = 0;
  forms::WindowHandle parent = 0;
};

class HeadlessToolkit final : public forms::Toolkit {
 public:
  /// The timers are the caller's and outlive the toolkit.
  explicit HeadlessToolkit(TimerLoop& timers) : timers_(timers) {}

  /// Shows a message box; returns when it is answered. Without one, boxes are answered at once.
  std::function<void(const std::string& text, const std::string& title)> onMessageBox;
  /// Chooses an item of a popup menu, or null to close it. Without one, menus close at once.
  std::function<forms::MenuItem*(forms::MenuItem& menu)> onPopUp;
  /// Checks a picture file; raises 53 or 481. Without one, every picture is accepted.
  std::function<void(const std::string& path)> onLoadPicture;

  /// The display that there would be.
  forms::TwipsPerPixel screen;

  std::shared_ptr<forms::FormView> CreateView(forms::Form& form) override;
  forms::TwipsPerPixel ScreenTwipsPerPixel() const override { return screen; }
  void MoveWindow(forms::WindowHandle window, std::int32_t x, std::int32_t y, std::int32_t width,
                  std::int32_t height, bool repaint) override;
  void SetParent(forms::WindowHandle child, forms::WindowHandle newParent) override;

  const Placement& PlacementOf(forms::WindowHandle window) { return placements_[window]; }
  TimerLoop& Timers() { return timers_; }
  std::string& Clipboard() { return clipboard_; }

 protected:
  void RunMessageBox(const std::string& text, const std::string& title) override {
    if (onMessageBox) onMessageBox(text, title);
  }

 private:
  TimerLoop& timers_;
  forms::WindowHandle lastHandle_ = 0;
  std::map<forms::WindowHandle, Placement> placements_;
  std::string clipboard_;
};

}  // namespace rotacasts::headless
