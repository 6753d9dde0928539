// The form toolkit without a screen: forms work, nothing is drawn.
//
// Message boxes, popup menus and hit tests go to functions that the owner sets; timers run in a
// TimerLoop.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <string>

#include "forms/form.h"
#include "forms/headless/timer_loop.h"

namespace rotacasts::headless {

/// Where a window is: the last arguments of MoveWindow and SetParent.
struct Placement {
  std::int32_t x = 0;
  std::int32_t y = 0;
  std::int32_t width = 0;
  std::int32_t height = 0;
  forms::WindowHandle parent = 0;
};

class HeadlessToolkit final : public forms::Toolkit {
 public:
  /// `timers` must outlive the toolkit.
  explicit HeadlessToolkit(TimerLoop& timers) : timers_(timers) {}

  /// Shows a message box and returns when it is answered. If unset, boxes are answered at once.
  std::function<void(const std::string& text, const std::string& title)> onMessageBox;
  /// Chooses an item of a popup menu; null closes the menu. If unset, menus close at once.
  std::function<forms::MenuItem*(forms::MenuItem& menu)> onPopUp;
  /// Checks a picture file. Errors: 53, 481. If unset, every picture is accepted.
  std::function<void(const std::string& path)> onLoadPicture;
  /// Finds the row of a list at a point in pixels. If unset, there is none.
  std::function<std::int32_t(const forms::ListBox& list, std::int32_t x, std::int32_t y)> onRowAt;

  /// The resolution of the screen that the forms believe in.
  forms::TwipsPerPixel screen;

  std::shared_ptr<forms::FormView> CreateView(forms::Form& form) override;
  forms::TwipsPerPixel ScreenTwipsPerPixel() const override { return screen; }
  void MoveWindow(forms::WindowHandle window, std::int32_t x, std::int32_t y, std::int32_t width,
                  std::int32_t height, bool repaint) override;
  void SetParent(forms::WindowHandle child, forms::WindowHandle newParent) override;

  const Placement& PlacementOf(forms::WindowHandle window) { return placements_[window]; }
  TimerLoop& Timers() { return timers_; }

 protected:
  void RunMessageBox(const std::string& text, const std::string& title) override {
    if (onMessageBox) onMessageBox(text, title);
  }

 private:
  TimerLoop& timers_;
  forms::WindowHandle lastHandle_ = 0;
  std::map<forms::WindowHandle, Placement> placements_;
};

}  // namespace rotacasts::headless
