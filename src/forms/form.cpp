#include "forms/form.h"

#include <utility>

#include "base/runtime_error.h"

namespace rotacasts::forms {
namespace {

MenuItem* FindItem(const std::vector<std::unique_ptr<MenuItem>>& items, std::string_view name) {
  for (const auto& item : items) {
    if (item->name == name) return item.get();
    if (MenuItem* inside = FindItem(item->items, name)) return inside;
  }
  return nullptr;
}

}  // namespace

void RaiseNoSuchControl(std::string_view name) {
  throw RuntimeError(ErrorNumber::ObjectVariableNotSet, name);
}

void MenuItem::UserClicked() {
  const std::shared_ptr<Form> keepAlive = form_.KeepAlive();
  if (form_.IsLoaded() && enabled && onClick) onClick();
}

void TimerArray::Load(std::int16_t index) {
  if (!elements_.try_emplace(index).second) {
    throw RuntimeError(ErrorNumber::ObjectAlreadyLoaded);
  }
}

void TimerArray::Unload(std::int16_t index) {
  Existing(index);
  if (index == 0) throw RuntimeError(ErrorNumber::CannotUnloadDesignTimeControl);
  elements_.erase(index);
  Mirror(index, Timer{});
}

void TimerArray::SetInterval(std::int16_t index, std::int32_t milliseconds) {
  Timer& timer = Existing(index);
  if (timer.interval == milliseconds) return;
  timer.interval = milliseconds;
  Mirror(index, timer);
}

void TimerArray::SetEnabled(std::int16_t index, bool enabled) {
  Timer& timer = Existing(index);
  if (timer.enabled == enabled) return;
  timer.enabled = enabled;
  Mirror(index, timer);
}

const Timer& TimerArray::At(std::int16_t index) const {
  const auto found = elements_.find(index);
  if (found == elements_.end()) throw RuntimeError(ErrorNumber::NoSuchArrayElement);
  return found->second;
}

Timer& TimerArray::Existing(std::int16_t index) {
  At(index);
  return elements_.at(index);
}

void TimerArray::Mirror(std::int16_t index, const Timer& timer) {
  if (form_.view_) form_.view_->SetTimer(index, timer.enabled ? timer.interval : 0);
}

void TimerArray::UnloadAll() {
  elements_ = {{std::int16_t{0}, Timer{}}};
}

void TimerArray::Tick(std::int16_t index) {
  const auto found = elements_.find(index);
  if (found == elements_.end() || !found->second.enabled) return;
  const std::shared_ptr<Form> keepAlive = form_.KeepAlive();
  if (onTimer) onTimer(index);
}

Control* Form::Find(std::string_view name) const {
  for (const auto& control : controls_) {
    if (control->Name() == name) return control.get();
  }
  return nullptr;
}

void Form::Adopt(std::unique_ptr<Control> control) {
  controls_.push_back(std::move(control));
  stackingOrder_.push_back(controls_.back().get());
  if (view_) view_->Added(*controls_.back());
}

MenuItem& Form::AddMenu(std::string name, std::string caption, MenuItem* parent) {
  auto& level = parent != nullptr ? parent->items : menus_;
  level.push_back(std::make_unique<MenuItem>(*this, std::move(name), std::move(caption)));
  return *level.back();
}

MenuItem& Form::Menu(std::string_view name) {
  if (menus_.empty()) MakeMenus();
  MenuItem* item = FindItem(menus_, name);
  if (item == nullptr) RaiseNoSuchControl(name);
  return *item;
}

void Form::PopUp(MenuItem& menu) {
  const std::shared_ptr<Form> keepAlive = KeepAlive();
  if (const std::shared_ptr<FormView> view = view_) view->PopUp(menu);
}

void Form::Load() {
  if (view_) return;
  view_ = toolkit_.CreateView(*this);
  OnLoad();
}

void Form::Unload() {
  const std::shared_ptr<Form> keepAlive = KeepAlive();
  timers_.UnloadAll();
  visible_ = false;
  // Cleared first, so that an event during the destruction finds an unloaded form.
  if (const std::shared_ptr<FormView> last = std::exchange(view_, nullptr)) last->Close();
}

WindowHandle Form::Handle() const {
  return view_ ? view_->Handle() : WindowHandle{0};
}

void Form::Show() {
  if (toolkit_.OpenMessageBoxes() > 0) throw RuntimeError(ErrorNumber::CannotShowModeless);
  SetVisible(true);
}

void Form::Hide() {
  SetVisible(false);
}

void Form::SetVisible(bool visible) {
  visible_ = visible;
  if (view_) view_->SetVisible(visible);
}

}  // namespace rotacasts::forms
