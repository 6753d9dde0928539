// The seam between the control model and the screen: what a backend does for a form.
//
// The model holds the truth (texts, values, items, geometry, which timers run) and the rules. A
// backend mirrors it and brings the user's acts back by calling the model's User... members.
//
// These interfaces lie in this room and not beside the control model because they are part of what
// the platform is asked for: the bundle in platform.h would have to include upwards otherwise.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

namespace rotacasts::forms {

class Control;
class Form;
class ListBox;
class MenuItem;
class TextBox;

/// A window of the platform; 32 bits wide where the host passes one.
using WindowHandle = std::intptr_t;

/// The screen's twips (1/1440 inch) per pixel; 15 at 96 dots per inch.
struct TwipsPerPixel {
  double horizontal = 15;
  double vertical = 15;
};

/// A run of characters in a text box.
struct TextSelection {
  std::size_t start = 0;
  std::size_t length = 0;
};

/// What changed in a control, so that a view redraws no more than that.
enum class Property {
  Bounds,
  Container,
  Enabled,
  Focus,
  Font,
  Look,  // colours, transparency, alignment
  Selection,
  Text,
  Value,
  Visible,
  ZOrder,
};

/// One form on the screen, held by its form. A call that the platform refuses raises a
/// RuntimeError.
class FormView {
 public:
  virtual ~FormView() = default;

  /// Destroys the windows and stops the timers, if that has not happened yet. The form calls
  /// nothing else afterwards, but a call that runs a message loop (PopUp, Send) may still be under
  /// way.
  virtual void Close() = 0;

  /// False once the windows are gone, also where nobody was told: with the thread that made them.
  virtual bool IsAlive() const = 0;
  virtual WindowHandle Handle() const = 0;
  virtual void SetVisible(bool visible) = 0;

  /// A control was added after the view was made.
  virtual void Added(Control& control) = 0;
  virtual void Changed(Control& control, Property property) = 0;
  virtual void ItemsCleared(ListBox& list) = 0;
  virtual void ItemAdded(ListBox& list) = 0;  // as the last one
  virtual void ItemChanged(ListBox& list, std::int32_t row) = 0;

  /// Loads the picture file into the image. Errors: 53 when it is missing, 481 when it is no
  /// picture; the picture shown before stays.
  virtual void LoadPicture(Control& image, const std::string& path) = 0;

  /// Runs the timer element at this interval in milliseconds from now on; 0 stops it.
  virtual void SetTimer(std::int16_t index, std::int32_t milliseconds) = 0;

  /// Shows the menu at the mouse pointer until it is closed; a chosen item has been clicked then.
  virtual void PopUp(MenuItem& menu) = 0;

  virtual TextSelection Selection(const TextBox& box) const = 0;
  /// Sends a window message to a control's window and returns the answer.
  virtual std::intptr_t Send(Control& control, std::uint32_t message, std::uintptr_t wParam,
                             std::intptr_t lParam) = 0;
};

/// A backend: makes views, moves windows, shows message boxes.
class Toolkit {
 public:
  virtual ~Toolkit() = default;

  virtual std::shared_ptr<FormView> CreateView(Form& form) = 0;
  virtual TwipsPerPixel ScreenTwipsPerPixel() const = 0;
  /// Pixels. Neither result is the caller's business, so neither is given.
  virtual void MoveWindow(WindowHandle window, std::int32_t x, std::int32_t y, std::int32_t width,
                          std::int32_t height, bool repaint) = 0;
  virtual void SetParent(WindowHandle child, WindowHandle newParent) = 0;

  /// A box with an OK button and no icon, modal to the application. It runs a message loop: timer
  /// ticks, calls of the host and even the end of the window can arrive before this returns.
  void ShowMessageBox(const std::string& text, const std::string& title) {
    struct OpenBox {
      explicit OpenBox(int& boxes) : count(boxes) { ++count; }
      ~OpenBox() { --count; }
      int& count;
    } box(openBoxes_);
    RunMessageBox(text, title);
  }
  /// How many message boxes are open now, one inside the other.
  int OpenMessageBoxes() const { return openBoxes_; }

 protected:
  virtual void RunMessageBox(const std::string& text, const std::string& title) = 0;

 private:
  int openBoxes_ = 0;
};

}  // namespace rotacasts::forms
