#include "forms/control.h"

#include <algorithm>
#include <utility>

#include "base/runtime_error.h"
#include "forms/form.h"

namespace rotacasts::forms {

FormView* Control::View() const {
  return form_.view_.get();
}

std::shared_ptr<FormView> Control::SharedView() const {
  return form_.view_;
}

void Control::Changed(Property property) {
  if (FormView* view = View()) view->Changed(*this, property);
}

template <class Handler, class... Arguments>
void Control::Raise(const Handler& handler, const Arguments&... arguments) {
  const std::shared_ptr<Form> keepAlive = form_.KeepAlive();
  if (handler) handler(arguments...);
}

void Control::MoveInto(Control* container) {
  container_ = container;
  Changed(Property::Container);
}

void Control::SetBounds(const Rectangle& bounds) {
  if (bounds == bounds_) return;
  bounds_ = bounds;
  Changed(Property::Bounds);
}

void Control::SetEnabled(bool enabled) {
  if (enabled == enabled_) return;
  enabled_ = enabled;
  Changed(Property::Enabled);
}

void Control::SetVisible(bool visible) {
  if (visible == visible_) return;
  visible_ = visible;
  Changed(Property::Visible);
}

void Control::BringToFront() {
  auto& order = form_.stackingOrder_;
  order.erase(std::remove(order.begin(), order.end(), this), order.end());
  order.push_back(this);
  Changed(Property::ZOrder);
}

void Control::SetFocus() {
  Changed(Property::Focus);
}

void Control::SetBackColour(Colour colour) {
  backColour_ = colour;
  Changed(Property::Look);
}

void Control::SetFontSize(double points) {
  fontSize_ = points;
  Changed(Property::Font);
}

void Control::UserPressed(const MouseEvent& event) {
  if (!TakesActs()) return;
  pressedButtons_ = static_cast<std::int16_t>(pressedButtons_ | event.button);
  Raise(onMouseDown, event);
}

void Control::UserReleased(const MouseEvent& event) {
  if (!TakesActs() || (pressedButtons_ & event.button) == 0) return;
  pressedButtons_ = static_cast<std::int16_t>(pressedButtons_ & ~event.button);
  Raise(onMouseUp, event);
}

void Control::UserLostPress() {
  if (std::exchange(pressedButtons_, std::int16_t{0}) != 0 && TakesActs()) Raise(onPressLost);
}

void CaptionedControl::SetCaption(std::string caption) {
  caption_ = std::move(caption);
  Changed(Property::Text);
}

void Label::SetAlignment(Alignment alignment) {
  alignment_ = alignment;
  Changed(Property::Look);
}

void Label::SetTransparent(bool transparent) {
  transparent_ = transparent;
  Changed(Property::Look);
}

void Image::SetStretched(bool stretched) {
  stretched_ = stretched;
  Changed(Property::Look);
}

void Image::LoadPicture(const std::string& path) {
  if (FormView* view = View()) view->LoadPicture(*this, path);
  picture_ = path;
}

void TextBox::SetText(std::string text) {
  if (text == text_) return;
  text_ = std::move(text);
  Changed(Property::Text);
  Raise(onChange);
}

TextSelection TextBox::Selection() const {
  const FormView* view = View();
  return view != nullptr ? view->Selection(*this) : TextSelection{};
}

void TextBox::Edit(TextEdit edit) {
  const std::shared_ptr<Form> keepAlive = GetForm().KeepAlive();
  if (const std::shared_ptr<FormView> view = SharedView()) view->Edit(*this, edit);
}

void CheckBox::RequireValue(std::int16_t value) {
  if (value < 0 || value > 2) throw RuntimeError(ErrorNumber::InvalidPropertyValue);
}

void CheckBox::SetValue(std::int16_t value) {
  RequireValue(value);
  if (value == value_) return;
  value_ = value;
  Changed(Property::Value);
  Raise(onClick);
}

void ListBox::Clear() {
  items_.clear();
  selectedRow_ = kNone;
  if (FormView* view = View()) view->ItemsCleared(*this);
}

void ListBox::Add(std::string text) {
  items_.push_back({std::move(text), 0});
  if (FormView* view = View()) view->ItemAdded(*this);
}

void ListBox::SetText(std::int32_t row, std::string text) {
  items_[Index(row)].text = std::move(text);
  if (FormView* view = View()) view->ItemChanged(*this, row);
}

void ListBox::SetItemData(std::int32_t row, std::int32_t data) {
  items_[Index(row)].data = data;
  if (FormView* view = View()) view->ItemChanged(*this, row);
}

void ListBox::Select(std::int32_t row) {
  if (row != kNone) Index(row);
  selectedRow_ = row;
  Changed(Property::Selection);
}

std::int32_t ListBox::RowAt(std::int32_t x, std::int32_t y) const {
  const FormView* view = View();
  return view != nullptr ? view->RowAt(*this, x, y) : kNone;
}

std::int32_t ListBox::TopRow() const {
  const FormView* view = View();
  return view != nullptr ? view->TopRow(*this) : 0;
}

void ListBox::ScrollTo(std::int32_t row) {
  if (FormView* view = View()) view->ScrollTo(*this, row);
}

std::size_t ListBox::Index(std::int32_t row) const {
  if (row < 0 || row >= Count()) throw RuntimeError(ErrorNumber::InvalidPropertyValue);
  return static_cast<std::size_t>(row);
}

}  // namespace rotacasts::forms
