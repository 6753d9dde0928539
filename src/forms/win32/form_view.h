// One form on the screen: a window with a real control for each control of the model.
#pragma once

#include <map>
#include <memory>
#include <utility>

#include "com/windows_api.h"
#include "forms/form.h"
#include "forms/win32/accessible_names.h"
#include "forms/win32/control_window.h"
#include "forms/win32/gdi.h"

namespace rotacasts::win32 {

class Win32Toolkit;

/// Mirrors a form's model to standard controls and reports what the user does. All controls are
/// children of the form's window, even inside a frame, which is a group box behind them; only a
/// transparent label over an image is a child of the image's window. Windows' errors after the
/// creation are ignored because the model is authoritative.
class Win32FormView final : public forms::FormView,
                            public std::enable_shared_from_this<Win32FormView> {
 public:
  Win32FormView(Win32Toolkit& toolkit, forms::Form& form);
  ~Win32FormView() override;

  /// Registers and unregisters the module's window classes.
  static void RegisterClasses(HINSTANCE module);
  static void UnregisterClasses(HINSTANCE module);

  /// Creates the windows. Not part of the constructor because the windows need a view that is
  /// already shared. Errors: 7 if the system has no window left.
  void CreateWindows();

  void Close() override;
  bool IsAlive() const override { return ::IsWindow(window_) != FALSE; }
  forms::WindowHandle Handle() const override;
  void SetVisible(bool visible) override;
  void Added(forms::Control& control) override;
  void Changed(forms::Control& control, forms::Property property) override;
  void ItemsCleared(forms::ListBox& list) override;
  void ItemAdded(forms::ListBox& list) override;
  void ItemChanged(forms::ListBox& list, std::int32_t row) override;
  void LoadPicture(forms::Control& image, const std::string& path) override;
  void SetTimer(std::int16_t index, std::int32_t milliseconds) override;
  void PopUp(forms::MenuItem& menu) override;
  forms::TextSelection Selection(const forms::TextBox& box) const override;
  void Edit(forms::TextBox& box, forms::TextEdit edit) override;
  std::int32_t RowAt(const forms::ListBox& list, std::int32_t x, std::int32_t y) const override;
  std::int32_t TopRow(const forms::ListBox& list) const override;
  void ScrollTo(forms::ListBox& list, std::int32_t row) override;

  // For the control windows.
  Win32Toolkit& Toolkit() const { return toolkit_; }
  HWND Window() const { return window_; }
  forms::Colour BackColour() const { return form_.Look().backColour; }
  HBRUSH Brush(COLORREF colour) { return brushes_.OfColour(colour); }
  HFONT FontOfSize(double points) { return fonts_.OfSize(points); }
  AccessibleNames& Names() { return names_; }
  /// A control's rectangle on the form's window.
  RECT PixelBounds(const forms::Control& control) const;
  /// The window of the image below a label; null if there is none.
  HWND ImageBeneath(const forms::Label& label) const;
  /// Creates the control's window, replacing the old one if there is one.
  void Make(forms::Control& control);
  void FocusNext(const ControlWindow& from, bool backwards);
  /// Sets the text colours of the control with this window and returns its background brush.
  LRESULT ColourOf(HDC context, HWND control);
  /// Keeps the view and its form alive as long as the result exists.
  using Alive = std::pair<std::shared_ptr<Win32FormView>, std::shared_ptr<forms::Form>>;
  Alive KeepAlive() { return {weak_from_this().lock(), form_.KeepAlive()}; }

 private:
  static LRESULT CALLBACK Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
  LRESULT Handle(UINT message, WPARAM wParam, LPARAM lParam);
  void Destroyed();
  void Stack();
  /// The control's window; null if there is none.
  ControlWindow* Of(const forms::Control& control) const;
  ControlWindow* Of(HWND window) const;

  Win32Toolkit& toolkit_;
  forms::Form& form_;
  HWND window_ = nullptr;
  bool closing_ = false;
  bool menuIsOpen_ = false;
  std::map<const forms::Control*, std::unique_ptr<ControlWindow>> controls_;
  Fonts fonts_;
  Brushes brushes_;
  AccessibleNames names_;
};

}  // namespace rotacasts::win32
