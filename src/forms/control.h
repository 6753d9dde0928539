// The controls of a form: what they hold, what they accept and which events they raise.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "platform/toolkit.h"

namespace rotacasts::forms {

/// Twips from the top-left corner of the container: a frame's rectangle or the client area.
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

/// A mouse button pressed or released on a control. X and Y are twips from the control's corner.
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

/// What all controls share. A control lives as long as its form. An act of the user (a User...
/// member) that arrives at a form which is no longer loaded does nothing.
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

  /// The frame that the control lies in; null for the form itself.
  Control* Container() const { return container_; }
  void MoveInto(Control* container);
  const Rectangle& Bounds() const { return bounds_; }
  void SetBounds(const Rectangle& bounds);
  bool IsEnabled() const { return enabled_; }
  void SetEnabled(bool enabled);
  bool IsVisible() const { return visible_; }
  void SetVisible(bool visible);
  /// Places the control above every other of its container.
  void BringToFront();
  void SetFocus();

  /// The back colour; none leaves it to the platform.
  std::optional<Colour> BackColour() const { return backColour_; }
  void SetBackColour(Colour colour);
  /// The place in the window-wide tab order; -1 for none.
  int TabIndex() const { return tabIndex_; }
  void SetTabIndex(int index) { tabIndex_ = index; }
  /// The label or frame whose caption a person reads as the control's name; null for none. Set
  /// before the form loads.
  const CaptionedControl* LabelledBy() const { return labelledBy_; }
  void SetLabelledBy(const CaptionedControl* label) { labelledBy_ = label; }
  /// Points, in the window's own font face. The size a label is given is the size it reports.
  double FontSize() const { return fontSize_; }
  void SetFontSize(double points);

  std::function<void(const MouseEvent&)> onMouseDown;
  std::function<void(const MouseEvent&)> onMouseUp;
  /// The press has ended without a release: the platform gave the mouse to somebody else.
  std::function<void()> onPressLost;
  void UserPressed(const MouseEvent& event);
  /// A release belongs to the control and the button that took the press; any other does nothing.
  void UserReleased(const MouseEvent& event);
  void UserLostPress();
  /// The buttons that are held down on the control, added up.
  std::int16_t PressedButtons() const { return pressedButtons_; }

 protected:
  FormView* View() const;
  bool TakesActs() const { return View() != nullptr; }
  void Changed(Property property);
  /// Calls a handler; the form stays alive until it returns, whatever the handler does to it.
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

/// A picture, drawn in the control's size when stretched.
class Image final : public Control {
 public:
  Image(Form& form, std::string name) : Control(form, Kind::Image, std::move(name)) {}
  bool IsStretched() const { return stretched_; }
  void SetStretched(bool stretched);
  /// The file shown; empty for none.
  const std::string& Picture() const { return picture_; }
  /// Errors: 53 for a missing file, 481 for one that is no picture.
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
  /// Sets the text and raises the change event if it differs. The typing limit does not bind here.
  void SetText(std::string text);
  /// Characters that the user can type; 0 for no limit.
  std::size_t MaxLength() const { return maxLength_; }
  void SetMaxLength(std::size_t characters) { maxLength_ = characters; }
  /// What the user has selected.
  TextSelection Selection() const;

  std::function<void()> onChange;
  /// The user changed the text, by whatever means the backend offers.
  void UserChangedText(std::string text) {
    if (TakesActs()) SetText(std::move(text));
  }

 private:
  std::string text_;
  std::size_t maxLength_ = 0;
};

/// A check box. Values: 0 unchecked, 1 checked, 2 greyed.
class CheckBox final : public Control {
 public:
  CheckBox(Form& form, std::string name) : Control(form, Kind::CheckBox, std::move(name)) {}

  std::int16_t Value() const { return value_; }
  /// Sets the value and raises the click event if it differs. Error 380 for any other value.
  void SetValue(std::int16_t value);
  /// Raises error 380 for a value that no check box accepts.
  static void RequireValue(std::int16_t value);

  std::function<void()> onClick;
  /// The user clicked: checks an unchecked box, unchecks any other.
  void UserClicked() {
    if (TakesActs()) SetValue(value_ == 0 ? 1 : 0);
  }

 private:
  std::int16_t value_ = 0;
};

/// A list with single selection, in the order in which items were added; every item carries a
/// number besides its text. A row out of range raises error 380.
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
  const Item& At(std::int32_t row) const { return items_[Checked(row)]; }
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
  /// The row as a place in Items(), or error 380.
  std::size_t Checked(std::int32_t row) const;

 private:
  std::vector<Item> items_;
  std::int32_t selectedRow_ = kNone;
};

}  // namespace rotacasts::forms
