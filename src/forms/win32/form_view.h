// One form on the screen: a window with a real control for each control of the model.
#pragma once

#include <map>
#include <memory>

#include "com/windows_api.h"
#include "forms/form.h"
#include "forms/win32/gdi.h"

namespace rotacasts::win32 {

class Win32Toolkit;

/// Mirrors a form's model to standard controls and brings the user's acts back to it. All controls
/// are children of the form's window, whatever frame they lie in; a frame is a group box behind
/// them. A transparent label over an image is a child of the image's window. What Windows refuses
/// after the windows are made is passed over: the model is the truth.
class Win32FormView final : public forms::FormView,
                            public std::enable_shared_from_this<Win32FormView> {
 public:
  Win32FormView(Win32Toolkit& toolkit, forms::Form& form);
  ~Win32FormView() override;

  /// Registers the window classes for the module, once; and takes them back.
  static void RegisterClasses(HINSTANCE module);
  static void UnregisterClasses(HINSTANCE module);

  /// Makes the windows. Raises error 7 when the system has none left. Apart from the constructor,
  /// for the windows refer to a view that is shared already.
  void CreateWindows();

  void Close() override;
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
  std::intptr_t Send(forms::Control& control, std::uint32_t message, std::uintptr_t wParam,
                     std::intptr_t lParam) override;

 private:
  /// A control's window, and what it needs to answer.
  struct Peer {
    Win32FormView& view;
    forms::Control& control;
    HWND window = nullptr;
    WNDPROC original = nullptr;
    Picture picture;
  };

  static LRESULT CALLBACK FormProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
  using PeerHandler = LRESULT (Win32FormView::*)(Peer& peer, UINT message, WPARAM wParam,
                                                 LPARAM lParam);
  template <PeerHandler Handle>
  static LRESULT CALLBACK PeerProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
  LRESULT HandleForm(UINT message, WPARAM wParam, LPARAM lParam);
  LRESULT HandleControl(Peer& peer, UINT message, WPARAM wParam, LPARAM lParam);
  LRESULT HandlePicture(Peer& peer, UINT message, WPARAM wParam, LPARAM lParam);
  void HandleCommand(HWND control, WORD notification);
  LRESULT ColourOf(HDC context, HWND control);
  bool HandleKey(Peer& peer, UINT message, WPARAM key);
  /// Raises a mouse event on the model; whether the message was one.
  bool HandleMouse(Peer& peer, UINT message, LPARAM lParam);
  void Paint(Peer& peer);
  void Destroyed();

  void CreatePeer(forms::Control& control);
  HWND CreateControlWindow(Peer& peer);
  void Arrange(Peer& peer);
  HFONT FontOf(const forms::Control& control);
  void Stack();
  forms::Image* ImageBeneath(const forms::Control& control) const;
  RECT PixelBounds(const forms::Control& control) const;
  void FocusNext(const Peer& from, bool backwards);
  Peer* PeerOf(const forms::Control& control) const;
  Peer* PeerOf(HWND window) const;

  Win32Toolkit& toolkit_;
  forms::Form& form_;
  HWND window_ = nullptr;
  bool closing_ = false;
  bool menuIsOpen_ = false;
  std::map<const forms::Control*, std::unique_ptr<Peer>> peers_;
  Fonts fonts_;
  Brushes brushes_;
};

}  // namespace rotacasts::win32
