// The seam between the control model and the screen: what a backend does for a form.
//
// The model is authoritative: it holds the state (texts, values, items, geometry, running timers)
// and the rules. A backend mirrors it and reports what the user does by calling the model's User...
// members.
//
// These interfaces lie in this room and not beside the control model because the bundle in
// platform.h would have to include upwards otherwise.
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

/// A platform window handle. Handles from the host are 32 bits wide.
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

/// What can be done with the text in a text box. All but SelectAll work on the selection.
enum class TextEdit { Cut, Copy, Paste, Delete, SelectAll };

/// What changed in a control, so that a view redraws only that.
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

/// A form's view on the screen, owned by the form. Every call that creates a window raises error 7
/// if the system has none left.
class FormView {
 public:
  virtual ~FormView() = default;

  /// Destroys the windows and stops the timers; the second call does nothing. The form calls
  /// nothing else afterwards, but a call that runs a message loop (PopUp, Edit) may still be in
  /// progress.
  virtual void Close() = 0;

  /// False once the windows are gone, even if no notification came because their thread has ended.
  virtual bool IsAlive() const = 0;
  virtual WindowHandle Handle() const = 0;
  virtual void SetVisible(bool visible) = 0;

  /// A control was added after the view was created.
  virtual void Added(Control& control) = 0;
  virtual void Changed(Control& control, Property property) = 0;
  virtual void ItemsCleared(ListBox& list) = 0;
  virtual void ItemAdded(ListBox& list) = 0;  // at the end
  virtual void ItemChanged(ListBox& list, std::int32_t row) = 0;

  /// Loads the picture file into the image. Errors: 53 if it is missing, 481 if it is not a picture
  /// (the old picture stays).
  virtual void LoadPicture(Control& image, const std::string& path) = 0;

  /// Starts or restarts the timer with this interval in milliseconds; 0 stops it.
  virtual void SetTimer(std::int16_t index, std::int32_t milliseconds) = 0;

  /// Shows the menu at the mouse pointer and waits until it closes. A chosen item is clicked before
  /// this returns.
  virtual void PopUp(MenuItem& menu) = 0;

  virtual TextSelection Selection(const TextBox& box) const = 0;
  /// Edits the text box, also while it is disabled.
  virtual void Edit(TextBox& box, TextEdit edit) = 0;

  /// The row of the list at a point in pixels from its corner; -1 outside the rows.
  virtual std::int32_t RowAt(const ListBox& list, std::int32_t x, std::int32_t y) const = 0;
  /// The uppermost row in sight, and scrolling another one there.
  virtual std::int32_t TopRow(const ListBox& list) const = 0;
  virtual void ScrollTo(ListBox& list, std::int32_t row) = 0;
};

/// A backend: creates views, moves windows, shows message boxes.
class Toolkit {
 public:
  virtual ~Toolkit() = default;

  virtual std::shared_ptr<FormView> CreateView(Form& form) = 0;
  virtual TwipsPerPixel ScreenTwipsPerPixel() const = 0;
  /// Moves a window; lengths in pixels. Failures are ignored, as in SetParent.
  virtual void MoveWindow(WindowHandle window, std::int32_t x, std::int32_t y, std::int32_t width,
                          std::int32_t height, bool repaint) = 0;
  virtual void SetParent(WindowHandle child, WindowHandle newParent) = 0;

  /// Shows a box with an OK button and no icon, modal to the application. It runs a message loop:
  /// timer ticks, calls of the host and even the end of the window can arrive before this returns.
  void ShowMessageBox(const std::string& text, const std::string& title) {
    struct OpenBox {
      explicit OpenBox(int& boxes) : count(boxes) { ++count; }
      ~OpenBox() { --count; }
      int& count;
    } box(openBoxes_);
    RunMessageBox(text, title);
  }
  /// The number of message boxes open now, one inside the other.
  int OpenMessageBoxes() const { return openBoxes_; }

 protected:
  virtual void RunMessageBox(const std::string& text, const std::string& title) = 0;

 private:
  int openBoxes_ = 0;
};

}  // namespace rotacasts::forms
