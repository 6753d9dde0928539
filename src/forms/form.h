// A form: its controls, menus and timers, and its life from loading to unloading.
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

/// A menu item; one that has items is a (sub)menu. The caption "-" makes a separator.
class MenuItem {
 public:
  MenuItem(Form& form, std::string itemName, std::string itemCaption)
      : name(std::move(itemName)), caption(std::move(itemCaption)), form_(form) {}

  bool IsSeparator() const { return caption == "-"; }
  /// The user chose the item. Does nothing if it is disabled or its form is not loaded.
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

/// A control array of timers. Element 0 always exists, disabled at first; the others are loaded and
/// unloaded at run time.
class TimerArray {
 public:
  explicit TimerArray(Form& form) : form_(form) {}

  /// Adds an element. Errors: 360 if it exists.
  void Load(std::int16_t index);
  /// Removes an element and stops it. Errors: 340 if it does not exist, 362 for element 0.
  void Unload(std::int16_t index);
  /// Setting the value that an element already has does not restart its period. Errors, also of the
  /// next two: 340 if the element does not exist.
  void SetInterval(std::int16_t index, std::int32_t milliseconds);
  void SetEnabled(std::int16_t index, bool enabled);
  const Timer& At(std::int16_t index) const;
  const std::map<std::int16_t, Timer>& Elements() const { return elements_; }

  std::function<void(std::int16_t)> onTimer;
  /// The element's period has passed. Ignored if the element was stopped or unloaded in the
  /// meantime.
  void Tick(std::int16_t index);

 private:
  friend class Form;
  Timer& Existing(std::int16_t index);
  void Mirror(std::int16_t index, const Timer& timer);
  void UnloadAll();

  Form& form_;
  std::map<std::int16_t, Timer> elements_{{std::int16_t{0}, Timer{}}};
};

/// A form's size, colour and font.
struct FormLook {
  std::int32_t clientWidth = 0;  // twips
  std::int32_t clientHeight = 0;
  Colour backColour;
  std::string fontFace;
  double fontSize = 0;  // points
};

/// A window. Load creates its view and calls OnLoad. Unload leaves a shell: handlers that were
/// waiting in a modal box can still use the controls, without effect. An event keeps the form alive
/// until its handler returns, so a form must be made with std::make_shared.
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

  /// Adds a control of class T; it lies directly on the form until it is moved.
  template <class T>
  T& Add(std::string name) {
    auto control = std::make_unique<T>(*this, std::move(name));
    T& added = *control;
    Adopt(std::move(control));
    return added;
  }
  /// The control of that name (case-sensitive); null if there is none.
  Control* Find(std::string_view name) const;
  /// The control of that name and class. Errors: 91 if there is none.
  template <class T>
  T& Get(std::string_view name) const;
  /// In creation order.
  const std::vector<std::unique_ptr<Control>>& Controls() const { return controls_; }
  /// From the backmost to the frontmost.
  const std::vector<Control*>& StackingOrder() const { return stackingOrder_; }

  MenuItem& AddMenu(std::string name, std::string caption, MenuItem* parent);
  /// The item of that name, at any level. Errors: 91 if there is none.
  MenuItem& Menu(std::string_view name);
  void PopUp(MenuItem& menu);

  TimerArray& Timers() { return timers_; }

  void Load();
  bool IsLoaded() const { return view_ != nullptr && view_->IsAlive(); }
  void Unload();
  WindowHandle Handle() const;
  bool IsVisible() const { return visible_; }
  /// Shows the form modelessly. Errors: 401 while a message box is open.
  void Show();
  void Hide();

  /// The platform destroyed the window, for instance together with its parent.
  void ViewDestroyed() { Unload(); }
  /// Keeps the form alive as long as the result exists.
  std::shared_ptr<Form> KeepAlive() { return weak_from_this().lock(); }

 protected:
  virtual void OnLoad() {}
  /// Adds the menus. Called when a menu is first used, because most windows never open one.
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
