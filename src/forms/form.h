// A form: its controls, menus and timer array, and its life from loading to unloading.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "forms/control.h"

namespace rotacasts::forms {

/// An item of a menu; with items of its own it is a (sub)menu. A caption of "-" is a separator.
class MenuItem {
 public:
  MenuItem(Form& form, std::string itemName, std::string itemCaption)
      : name(std::move(itemName)), caption(std::move(itemCaption)), form_(form) {}

  bool IsSeparator() const { return caption == "-"; }
  /// The user chose the item; does nothing while it is disabled, and once its form is unloaded.
  void UserClicked();

  const std::string name;
  const std::string caption;
  bool enabled = true;
  bool visible = true;
  std::vector<std::unique_ptr<MenuItem>> items;
  std::function<void()> onClick;

 private:
  Form& form_;
};

/// One element of a timer array.
struct Timer {
  std::int32_t interval = 0;  // milliseconds; 0 never ticks
  bool enabled = false;
};

/// A control array of timers. Element 0 exists from the start, disabled; the others are loaded and
/// unloaded at run time.
class TimerArray {
 public:
  explicit TimerArray(Form& form) : form_(form) {}

  /// Error 360 when the element exists.
  void Load(std::int16_t index);
  /// Error 340 when the element does not exist, 362 for element 0.
  void Unload(std::int16_t index);
  /// Error 340 when the element does not exist. Setting what an element holds already leaves the
  /// period that runs alone.
  void SetInterval(std::int16_t index, std::int32_t milliseconds);
  void SetEnabled(std::int16_t index, bool enabled);
  const Timer& At(std::int16_t index) const;
  const std::map<std::int16_t, Timer>& Elements() const { return elements_; }

  std::function<void(std::int16_t)> onTimer;
  /// The element's period has passed. A tick that arrives late, for an element that has been
  /// stopped or unloaded meanwhile, is dropped.
  void Tick(std::int16_t index);

 private:
  friend class Form;
  Timer& Existing(std::int16_t index);
  void Mirror(std::int16_t index, const Timer& timer);
  void UnloadAll();

  Form& form_;
  std::map<std::int16_t, Timer> elements_{{std::int16_t{0}, Timer{}}};
};

/// What a form shows of itself.
struct FormLook {
  std::int32_t clientWidth = 0;  // twips
  std::int32_t clientHeight = 0;
  Colour backColour;
  std::string fontFace;
  double fontSize = 0;  // points
};

/// A window. Made with std::make_shared; an event keeps it alive until its handler has returned.
/// Loading makes its view and raises the load event; from unloading on it is a shell whose controls
/// can still be touched without effect, for handlers that were waiting inside a modal box.
class Form : public std::enable_shared_from_this<Form> {
 public:
  Form(Toolkit& toolkit, std::string name, FormLook look)
      : toolkit_(toolkit), name_(std::move(name)), look_(std::move(look)), timers_(*this) {}
  virtual ~Form() = default;
  Form(const Form&) = delete;
  Form& operator=(const Form&) = delete;

  Toolkit& GetToolkit() const { return toolkit_; }
  const std::string& Name() const { return name_; }
  const FormLook& Look() const { return look_; }

  /// Adds a control of class T to the form; it lies on the form itself until it is moved.
  template <class T>
  T& Add(std::string name) {
    auto control = std::make_unique<T>(*this, std::move(name));
    T& added = *control;
    Adopt(std::move(control));
    return added;
  }
  /// The control of that name, case-sensitively; null when there is none.
  Control* Find(std::string_view name) const;
  /// The control of that name as its class. Error 91 when there is none of that name and class.
  template <class T>
  T& Get(std::string_view name) const;
  /// In creation order.
  const std::vector<std::unique_ptr<Control>>& Controls() const { return controls_; }
  /// From the backmost to the frontmost.
  const std::vector<Control*>& StackingOrder() const { return stackingOrder_; }

  MenuItem& AddMenu(std::string name, std::string caption, MenuItem* parent);
  /// Error 91 when there is no such item at any level.
  MenuItem& Menu(std::string_view name);
  void PopUp(MenuItem& menu);

  TimerArray& Timers() { return timers_; }

  void Load();
  bool IsLoaded() const { return view_ != nullptr && view_->IsAlive(); }
  void Unload();
  WindowHandle Handle() const;
  bool IsVisible() const { return visible_; }
  /// Modeless. Error 401 while a message box is open.
  void Show();
  void Hide();
  Control* Focused() const { return focused_; }

  /// The platform destroyed the window from outside, for instance with its parent.
  void ViewDestroyed() { Unload(); }
  /// Keeps the form alive while the result lives.
  std::shared_ptr<Form> KeepAlive() { return weak_from_this().lock(); }

  std::intptr_t Send(Control& control, std::uint32_t message, std::uintptr_t wParam,
                     std::intptr_t lParam);

 protected:
  virtual void OnLoad() {}
  /// Adds the menus, when one is first asked for: a window whose menus nobody opens holds none.
  virtual void MakeMenus() {}

 private:
  friend class Control;
  friend class TimerArray;
  void Adopt(std::unique_ptr<Control> control);
  void SetVisible(bool visible);

  Toolkit& toolkit_;
  const std::string name_;
  const FormLook look_;
  std::vector<std::unique_ptr<Control>> controls_;
  std::vector<Control*> stackingOrder_;
  std::vector<std::unique_ptr<MenuItem>> menus_;
  TimerArray timers_;
  Control* focused_ = nullptr;
  bool visible_ = false;
  std::shared_ptr<FormView> view_;
};

/// Raises error 91: the form has no such control or menu item.
[[noreturn]] void RaiseNoSuchControl(std::string_view name);

template <class T>
T& Form::Get(std::string_view name) const {
  T* control = dynamic_cast<T*>(Find(name));
  if (control == nullptr) RaiseNoSuchControl(name);
  return *control;
}

}  // namespace rotacasts::forms
