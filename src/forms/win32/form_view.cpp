#include "forms/win32/form_view.h"

#include <algorithm>
#include <cmath>
#include <vector>

#include "base/runtime_error.h"
#include "forms/win32/popup_menu.h"
#include "forms/win32/win32_toolkit.h"
#include "forms/win32/window_procedure.h"

namespace rotacasts::win32 {
namespace {

using namespace forms;

constexpr const wchar_t* kFormClass = L"rotacasts.form";
constexpr int kFirstControlId = 1000;  // above the identifiers that have a meaning in dialogs

WPARAM TimerId(std::int16_t index) {
  return static_cast<WPARAM>(static_cast<std::uint16_t>(index));
}

}  // namespace

void Win32FormView::RegisterClasses(HINSTANCE module) {
  WNDCLASSEXW form{};
  form.cbSize = sizeof form;
  form.style = CS_DBLCLKS;
  form.lpfnWndProc = Procedure;
  form.hInstance = module;
  form.hCursor = ::LoadCursorW(nullptr, IDC_ARROW);
  form.lpszClassName = kFormClass;
  ::RegisterClassExW(&form);
  WNDCLASSEXW picture = form;
  picture.lpfnWndProc = ControlWindow::Procedure;
  picture.lpszClassName = ControlWindow::kPictureClass;
  ::RegisterClassExW(&picture);
}

void Win32FormView::UnregisterClasses(HINSTANCE module) {
  ::UnregisterClassW(kFormClass, module);
  ::UnregisterClassW(ControlWindow::kPictureClass, module);
}

Win32FormView::Win32FormView(Win32Toolkit& toolkit, Form& form)
    : toolkit_(toolkit), form_(form), fonts_(form.Look().fontFace) {}

Win32FormView::~Win32FormView() {
  Win32FormView::Close();
}

void Win32FormView::CreateWindows() {
  const TwipsPerPixel screen = toolkit_.ScreenTwipsPerPixel();
  const int width = static_cast<int>(std::lround(form_.Look().clientWidth / screen.horizontal));
  const int height = static_cast<int>(std::lround(form_.Look().clientHeight / screen.vertical));
  window_ = ::CreateWindowExW(WS_EX_CONTROLPARENT, kFormClass, L"", WS_POPUP | WS_CLIPCHILDREN, 0,
                              0, width, height, nullptr, nullptr, toolkit_.Module(), this);
  if (window_ == nullptr) throw RuntimeError(ErrorNumber::OutOfMemory, "no window is left");
  for (const auto& control : form_.Controls()) Make(*control);
  Stack();
}

void Win32FormView::Close() {
  if (closing_) return;
  closing_ = true;
  if (window_ != nullptr) ::DestroyWindow(window_);
}

WindowHandle Win32FormView::Handle() const {
  return reinterpret_cast<WindowHandle>(window_);
}

void Win32FormView::SetVisible(bool visible) {
  ::ShowWindow(window_, visible ? SW_SHOWNOACTIVATE : SW_HIDE);
}

// --- the controls' windows ---

ControlWindow* Win32FormView::Of(const Control& control) const {
  const auto found = controls_.find(&control);
  const bool isThere = found != controls_.end() && found->second->Window() != nullptr;
  return isThere ? found->second.get() : nullptr;
}

ControlWindow* Win32FormView::Of(HWND window) const {
  for (const auto& [model, control] : controls_) {
    if (control->Window() == window) return control.get();
  }
  return nullptr;
}

RECT Win32FormView::PixelBounds(const Control& control) const {
  const TwipsPerPixel screen = toolkit_.ScreenTwipsPerPixel();
  Rectangle bounds = control.Bounds();
  for (const Control* frame = control.Container(); frame != nullptr; frame = frame->Container()) {
    bounds.left += frame->Bounds().left;
    bounds.top += frame->Bounds().top;
  }
  const auto x = [&](std::int32_t twips) { return std::lround(twips / screen.horizontal); };
  const auto y = [&](std::int32_t twips) { return std::lround(twips / screen.vertical); };
  return {x(bounds.left), y(bounds.top), x(bounds.left + bounds.width),
          y(bounds.top + bounds.height)};
}

HWND Win32FormView::ImageBeneath(const Label& label) const {
  const RECT area = PixelBounds(label);
  for (const auto& other : form_.Controls()) {
    if (other->GetKind() != Kind::Image) continue;
    const RECT beneath = PixelBounds(*other);
    const ControlWindow* image = Of(*other);
    if (image != nullptr && ::PtInRect(&beneath, {area.left, area.top}) != FALSE) {
      return image->Window();
    }
  }
  return nullptr;
}

void Win32FormView::Make(Control& control) {
  auto& window = controls_[&control];
  if (!window) window = MakeControlWindow(*this, control);
  const auto& all = form_.Controls();
  const auto place =
      std::ranges::find_if(all, [&control](const auto& one) { return one.get() == &control; });
  window->Create(kFirstControlId + static_cast<int>(place - all.begin()));
}

/// Orders the windows: first those that Tab reaches, in tab order and each after its label, because
/// a host's dialog keys follow this order; the frames last.
void Win32FormView::Stack() {
  std::map<const Control*, int> ranks;
  constexpr int kOther = 1000;
  constexpr int kBehind = 2000;
  for (const auto& [model, control] : controls_) {
    ranks.emplace(model, control->LiesBehind() ? kBehind : kOther);
  }
  for (const auto& [model, control] : controls_) {
    if (!control->IsReachedByTab()) continue;
    ranks[model] = 2 * model->TabIndex() + 1;
    const Control* label = model->LabelledBy();
    if (label != nullptr && label->GetKind() == Kind::Label) ranks[label] = 2 * model->TabIndex();
  }
  std::vector<const ControlWindow*> pile;
  for (const Control* control : form_.StackingOrder()) {
    if (const ControlWindow* window = Of(*control)) pile.push_back(window);
  }
  std::ranges::stable_sort(
      pile, {}, [&ranks](const ControlWindow* window) { return ranks[&window->Model()]; });
  HWND above = HWND_TOP;
  for (const ControlWindow* control : pile) {
    if (::GetAncestor(control->Window(), GA_PARENT) != window_) continue;
    ::SetWindowPos(control->Window(), above, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE | SWP_NOACTIVATE);
    above = control->Window();
  }
}

void Win32FormView::Added(Control& control) {
  Make(control);
  Stack();
}

void Win32FormView::Changed(Control& control, Property property) {
  ControlWindow* window = Of(control);
  if (window == nullptr) return;
  if (property == Property::ZOrder) return Stack();
  window->Changed(property);
}

void Win32FormView::ItemsCleared(ListBox& list) {
  if (ControlWindow* window = Of(list)) window->ItemsCleared();
}

void Win32FormView::ItemAdded(ListBox& list) {
  if (ControlWindow* window = Of(list)) window->ItemAdded();
}

void Win32FormView::ItemChanged(ListBox& list, std::int32_t row) {
  if (ControlWindow* window = Of(list)) window->ItemChanged(row);
}

void Win32FormView::LoadPicture(Control& image, const std::string& path) {
  if (ControlWindow* window = Of(image)) window->LoadPicture(path);
}

void Win32FormView::SetTimer(std::int16_t index, std::int32_t milliseconds) {
  if (milliseconds > 0) {
    ::SetTimer(window_, TimerId(index), toolkit_.Stretch(milliseconds), nullptr);
  } else {
    ::KillTimer(window_, TimerId(index));
  }
}

void Win32FormView::PopUp(MenuItem& menu) {
  menuIsOpen_ = true;
  PopUpMenu(window_, menu);
  menuIsOpen_ = false;
}

TextSelection Win32FormView::Selection(const TextBox& box) const {
  const ControlWindow* control = Of(box);
  if (control == nullptr) return {};
  DWORD start = 0;
  DWORD end = 0;
  ::SendMessageW(control->Window(), EM_GETSEL, reinterpret_cast<WPARAM>(&start),
                 reinterpret_cast<LPARAM>(&end));
  return {start, end - start};
}

void Win32FormView::Edit(TextBox& box, TextEdit edit) {
  struct Row {
    UINT message;
    WPARAM wParam;
    LPARAM lParam;
  };
  static const Row kMessages[] = {
      {WM_CUT, 0, 0},     {WM_COPY, 0, 0},
      {WM_PASTE, 0, 0},   {EM_REPLACESEL, FALSE, reinterpret_cast<LPARAM>("")},  // cannot be undone
      {EM_SETSEL, 0, -1},
  };
  const ControlWindow* window = Of(box);
  if (window == nullptr) return;
  const Row& row = kMessages[static_cast<int>(edit)];
  ::SendMessageA(window->Window(), row.message, row.wParam, row.lParam);
}

std::int32_t Win32FormView::RowAt(const ListBox& list, std::int32_t x, std::int32_t y) const {
  constexpr LRESULT kOutsideItems = 0x10000;  // bit 16 of the answer
  const ControlWindow* window = Of(list);
  if (window == nullptr) return ListBox::kNone;
  const LRESULT answer =
      ::SendMessageA(window->Window(), LB_ITEMFROMPOINT, 0, LPARAM{y} * 65536 + x);
  return (answer & kOutsideItems) != 0 ? ListBox::kNone : static_cast<std::int32_t>(answer);
}

std::int32_t Win32FormView::TopRow(const ListBox& list) const {
  const ControlWindow* window = Of(list);
  if (window == nullptr) return 0;
  return std::max(0, static_cast<int>(::SendMessageW(window->Window(), LB_GETTOPINDEX, 0, 0)));
}

void Win32FormView::ScrollTo(ListBox& list, std::int32_t row) {
  const ControlWindow* window = Of(list);
  if (window == nullptr) return;
  ::SendMessageW(window->Window(), LB_SETTOPINDEX, static_cast<WPARAM>(row), 0);
}

void Win32FormView::FocusNext(const ControlWindow& from, bool backwards) {
  std::vector<const ControlWindow*> order;
  for (const auto& [model, control] : controls_) {
    if (control->IsReachedByTab() && model->IsEnabled() && model->IsVisible()) {
      order.push_back(control.get());
    }
  }
  std::ranges::sort(order, {}, [](const ControlWindow* one) { return one->Model().TabIndex(); });
  const auto at = std::ranges::find(order, &from);
  if (at == order.end()) return;
  const std::size_t step = backwards ? order.size() - 1 : 1;
  const auto next = (static_cast<std::size_t>(at - order.begin()) + step) % order.size();
  ::SetFocus(order[next]->Window());
}

// --- the form's own window ---

LRESULT CALLBACK Win32FormView::Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  if (message == WM_NCCREATE) {
    const auto* creation = reinterpret_cast<const CREATESTRUCTW*>(lParam);
    auto* view = static_cast<Win32FormView*>(creation->lpCreateParams);
    view->window_ = window;
    ::SetWindowLongPtrW(window, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(view));
  }
  auto* view = reinterpret_cast<Win32FormView*>(::GetWindowLongPtrW(window, GWLP_USERDATA));
  if (view == nullptr) return ::DefWindowProcW(window, message, wParam, lParam);
  return Contained([&] {
    const Alive alive = view->KeepAlive();
    return view->Handle(message, wParam, lParam);
  });
}

LRESULT Win32FormView::Handle(UINT message, WPARAM wParam, LPARAM lParam) {
  switch (message) {
    case WM_ERASEBKGND: {
      RECT area;
      ::GetClientRect(window_, &area);
      ::FillRect(reinterpret_cast<HDC>(wParam), &area, Brush(ToColorRef(BackColour())));
      return TRUE;
    }
    case WM_COMMAND:
      if (ControlWindow* control = Of(reinterpret_cast<HWND>(lParam))) {
        control->Notified(HIWORD(wParam));
      }
      return 0;
    case WM_CTLCOLORSTATIC:
    case WM_CTLCOLOREDIT:
    case WM_CTLCOLORLISTBOX:
    case WM_CTLCOLORBTN:
      return ColourOf(reinterpret_cast<HDC>(wParam), reinterpret_cast<HWND>(lParam));
    case WM_TIMER:
      form_.Timers().Tick(static_cast<std::int16_t>(wParam));
      return 0;
    case WM_NCDESTROY: {
      const HWND window = window_;
      ::SetWindowLongPtrW(window, GWLP_USERDATA, 0);
      const LRESULT result = ::DefWindowProcW(window, message, wParam, lParam);
      Destroyed();
      return result;
    }
    default:
      return ::DefWindowProcW(window_, message, wParam, lParam);
  }
}

LRESULT Win32FormView::ColourOf(HDC context, HWND window) {
  const ControlWindow* control = Of(window);
  const HBRUSH back =
      control != nullptr ? control->Colour(context) : Brush(ToColorRef(BackColour()));
  return reinterpret_cast<LRESULT>(back);
}

/// The window was destroyed, by the form or together with its parent.
void Win32FormView::Destroyed() {
  if (menuIsOpen_) ::EndMenu();  // its key messages went to the window
  window_ = nullptr;
  for (const auto& [model, control] : controls_) control->Gone();
  fonts_.Free();
  brushes_.Free();
  if (!std::exchange(closing_, true)) form_.ViewDestroyed();
}

}  // namespace rotacasts::win32
