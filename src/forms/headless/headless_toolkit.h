// The form toolkit without pixels: forms work, nothing is drawn.
//
// Message boxes go to a function, popup menus ask a function for the choice, the messages to the
// controls' windows go to a function, and timers run in a TimerLoop.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <string>

#include "forms/form.h"
#include "forms/headless/timer_loop.h"

namespace rotacasts::headless {

/// Where a window lies: what MoveWindow and SetParent were told last.
struct Placement {
  std::int32_t x = 0;
  std::int32_t y = 0;
  std::int32_t width = 0;
  std::int32_t height = 0;
  forms::WindowHandle parent = 0;
};

/// A message to the window that a control would have, as in forms/window_messages.h.
struct WindowMessage {
  std::uint32_t message = 0;
  std::uintptr_t wParam = 0;
  std::intptr_t lParam = 0;
  bool operator==(const WindowMessage&) const = default;
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
  /// Carries out a message to a control's window and answers it. Without one, nothing happens and
  /// the answer is 0.
  std::function<std::intptr_t(forms::Control& control, const WindowMessage& message)> onSend;

  /// The display that there would be.
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
