// The controls of a form: what they hold, what they accept and which events they raise.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "platform/toolkit.h"

namespace rotacasts::forms {

/// In twips, from the top-left corner of the container (a frame or the client area).
struct Rectangle {
  std::int32_t left = 0;
  std::int32_t top = 0;
  std::int32_t width = 0;
  std::int32_t height = 0;
  bool operator==(const Rectangle&) const = default;
};

struct Colour {
  std::uint8_t red = 0;
  std::uint8_t green = 0;
  std::uint8_t blue = 0;
  bool operator==(const Colour&) const = default;
};

enum class Alignment { Left, Right, Centre };

/// A mouse button pressed or released on a control. x and y are in twips from the control's corner.
struct MouseEvent {
  static constexpr std::int16_t kLeft = 1;
  static constexpr std::int16_t kRight = 2;
  static constexpr std::int16_t kMiddle = 4;
  std::int16_t button = 0;
  float x = 0;
  float y = 0;
};

/// Kinds of controls, each a class below.
enum class Kind { Frame, TextBox, CheckBox, ListBox, Label, Image };

class CaptionedControl;

/// What all controls share. The User... members report what the user did; they do nothing while the
/// form is not loaded. A control lives as long as its form.
class Control {
 public:
  Control(Form& form, Kind kind, std::string name)
      : form_(form), kind_(kind), name_(std::move(name)) {}
  virtual ~Control() = default;
  Control(const Control&) = delete;
  Control& operator=(const Control&) = delete;

  Form& GetForm() const { return form_; }
  Kind GetKind() const { return kind_; }
  const std::string& Name() const { return name_; }

  /// The frame that contains the control; null for the form itself.
  Control* Container() const { return container_; }
  void MoveInto(Control* container);
  const Rectangle& Bounds() const { return bounds_; }
  void SetBounds(const Rectangle& bounds);
  bool IsEnabled() const { return enabled_; }
  void SetEnabled(bool enabled);
  bool IsVisible() const { return visible_; }
  void SetVisible(bool visible);
  /// Puts the control in front of all others.
  void BringToFront();
  void SetFocus();

  /// The background colour; without one the view chooses.
  std::optional<Colour> BackColour() const { return backColour_; }
  void SetBackColour(Colour colour);
  /// The place in the window's tab order; -1 for none.
  int TabIndex() const { return tabIndex_; }
  void SetTabIndex(int index) { tabIndex_ = index; }
  /// The label or frame whose caption names the control for the user; null for none. Set it before
  /// the form loads.
  const CaptionedControl* LabelledBy() const { return labelledBy_; }
  void SetLabelledBy(const CaptionedControl* label) { labelledBy_ = label; }
  /// In points, in the form's font face. Returns the size that was set, even if a view shrinks the
  /// text to fit.
  double FontSize() const { return fontSize_; }
  void SetFontSize(double points);

  std::function<void(const MouseEvent&)> onMouseDown;
  std::function<void(const MouseEvent&)> onMouseUp;
  /// The press ended without a release because the platform gave the mouse to another window.
  std::function<void()> onPressLost;
  void UserPressed(const MouseEvent& event);
  /// Raises onMouseUp only for a button that was pressed on this control.
  void UserReleased(const MouseEvent& event);
  void UserLostPress();
  /// The buttons held down on the control, added up.
  std::int16_t PressedButtons() const { return pressedButtons_; }

 protected:
  FormView* View() const;
  /// For a call that runs a message loop, which must outlive the view's end.
  std::shared_ptr<FormView> SharedView() const;
  bool TakesActs() const { return View() != nullptr; }
  void Changed(Property property);
  /// Calls the handler, if there is one, and keeps the form alive until it returns.
  template <class Handler, class... Arguments>
  void Raise(const Handler& handler, const Arguments&... arguments);

 private:
  Form& form_;
  const Kind kind_;
  const std::string name_;
  Control* container_ = nullptr;
  Rectangle bounds_;
  bool enabled_ = true;
  bool visible_ = true;
  std::optional<Colour> backColour_;
  int tabIndex_ = -1;
  const CaptionedControl* labelledBy_ = nullptr;
  double fontSize_ = 8.25;
  std::int16_t pressedButtons_ = 0;
};

/// A control that shows a fixed text: a frame (group box) or a label.
class CaptionedControl : public Control {
 public:
  using Control::Control;
  const std::string& Caption() const { return caption_; }
  void SetCaption(std::string caption);

 private:
  std::string caption_;
};

class Frame final : public CaptionedControl {
 public:
  Frame(Form& form, std::string name) : CaptionedControl(form, Kind::Frame, std::move(name)) {}
};

class Label final : public CaptionedControl {
 public:
  Label(Form& form, std::string name) : CaptionedControl(form, Kind::Label, std::move(name)) {}
  Alignment GetAlignment() const { return alignment_; }
  void SetAlignment(Alignment alignment);
  bool IsTransparent() const { return transparent_; }
  void SetTransparent(bool transparent);

 private:
  Alignment alignment_ = Alignment::Left;
  bool transparent_ = false;
};

/// A picture; if stretched, it is drawn in the control's size.
class Image final : public Control {
 public:
  Image(Form& form, std::string name) : Control(form, Kind::Image, std::move(name)) {}
  bool IsStretched() const { return stretched_; }
  void SetStretched(bool stretched);
  /// The file shown; empty for none.
  const std::string& Picture() const { return picture_; }
  /// Errors: 53 if the file is missing, 481 if it is not a picture.
  void LoadPicture(const std::string& path);

 private:
  bool stretched_ = false;
  std::string picture_;
};

/// A single-line text box.
class TextBox final : public Control {
 public:
  TextBox(Form& form, std::string name) : Control(form, Kind::TextBox, std::move(name)) {}

  const std::string& Text() const { return text_; }
  /// Sets the text and raises onChange if it differs. MaxLength does not apply.
  void SetText(std::string text);
  /// The number of characters that the user can type; 0 for no limit.
  std::size_t MaxLength() const { return maxLength_; }
  void SetMaxLength(std::size_t characters) { maxLength_ = characters; }
  /// What the user has selected.
  TextSelection Selection() const;
  // Editing as the user could do it, also while the box is disabled. Raises the change event if the
  // text changes.
  void Cut() { Edit(TextEdit::Cut); }
  void Copy() { Edit(TextEdit::Copy); }
  void Paste() { Edit(TextEdit::Paste); }
  void DeleteSelection() { Edit(TextEdit::Delete); }
  void SelectAll() { Edit(TextEdit::SelectAll); }

  std::function<void()> onChange;
  /// The user changed the text.
  void UserChangedText(std::string text) {
    if (TakesActs()) SetText(std::move(text));
  }

 private:
  void Edit(TextEdit edit);

  std::string text_;
  std::size_t maxLength_ = 0;
};

/// A check box. Values: 0 unchecked, 1 checked, 2 greyed.
class CheckBox final : public Control {
 public:
  CheckBox(Form& form, std::string name) : Control(form, Kind::CheckBox, std::move(name)) {}

  std::int16_t Value() const { return value_; }
  /// Sets the value and raises onClick if it differs. Errors: 380 unless it is 0, 1 or 2.
  void SetValue(std::int16_t value);
  /// Errors: 380 unless the value is 0, 1 or 2.
  static void RequireValue(std::int16_t value);

  std::function<void()> onClick;
  /// The user clicked: checks an unchecked box, unchecks any other.
  void UserClicked() {
    if (TakesActs()) SetValue(value_ == 0 ? 1 : 0);
  }

 private:
  std::int16_t value_ = 0;
};

/// A single-selection list in insertion order. Each item has a text and a number. Errors: 380 for a
/// row out of range.
class ListBox final : public Control {
 public:
  static constexpr std::int32_t kNone = -1;
  struct Item {
    std::string text;
    std::int32_t data = 0;
    bool operator==(const Item&) const = default;
  };

  ListBox(Form& form, std::string name) : Control(form, Kind::ListBox, std::move(name)) {}

  std::int32_t Count() const { return static_cast<std::int32_t>(items_.size()); }
  const std::vector<Item>& Items() const { return items_; }
  const Item& At(std::int32_t row) const { return items_[Index(row)]; }
  void Clear();
  void Add(std::string text);
  void SetText(std::int32_t row, std::string text);
  void SetItemData(std::int32_t row, std::int32_t data);

  /// The selected row, or kNone.
  std::int32_t SelectedRow() const { return selectedRow_; }
  void Select(std::int32_t row);
  void UserSelected(std::int32_t row) {
    if (TakesActs()) selectedRow_ = row;
  }
  /// The row at a point in pixels from the list's corner, or kNone.
  std::int32_t RowAt(std::int32_t x, std::int32_t y) const;
  /// The uppermost row in sight; 0 without a view.
  std::int32_t TopRow() const;
  void ScrollTo(std::int32_t row);
  /// The row as an index into Items(). Errors: 380 if it is out of range.
  std::size_t Index(std::int32_t row) const;

 private:
  std::vector<Item> items_;
  std::int32_t selectedRow_ = kNone;
};

}  // namespace rotacasts::forms
