#include "forms/win32/form_view.h"

#include <windowsx.h>

#include <algorithm>
#include <cmath>
#include <vector>

#include "base/runtime_error.h"
#include "com/com_support.h"
#include "forms/win32/popup_menu.h"
#include "forms/win32/win32_toolkit.h"

namespace rotacasts::win32 {
namespace {

using namespace forms;

constexpr const wchar_t* kFormClass = L"rotacasts.form";
constexpr const wchar_t* kPictureClass = L"rotacasts.picture";

/// How a kind of control is made.
struct KindRow {
  Kind kind;
  const wchar_t* windowClass;
  DWORD style;
  DWORD extendedStyle;
};

constexpr KindRow kKinds[] = {
    {Kind::Frame, L"BUTTON", BS_GROUPBOX, WS_EX_TRANSPARENT},
    {Kind::TextBox, L"EDIT", ES_AUTOHSCROLL | WS_TABSTOP, WS_EX_CLIENTEDGE},
    {Kind::CheckBox, L"BUTTON", BS_3STATE | WS_TABSTOP, 0},
    {Kind::ListBox, L"LISTBOX",
     LBS_NOTIFY | LBS_HASSTRINGS | LBS_NOINTEGRALHEIGHT | WS_VSCROLL | WS_TABSTOP,
     WS_EX_CLIENTEDGE},
    {Kind::Label, L"STATIC", SS_NOTIFY | SS_NOPREFIX, 0},
    {Kind::Image, kPictureClass, 0, 0},  // what it paints shows through the caption on it
};

const KindRow& RowOf(Kind kind) {
  return *std::find_if(std::begin(kKinds), std::end(kKinds),
                       [kind](const KindRow& row) { return row.kind == kind; });
}

/// Which place a kind takes in the pile of siblings: frames lie behind what they frame.
bool LiesBehind(Kind kind) {
  return kind == Kind::Frame;
}

struct MouseRow {
  UINT message;
  std::int16_t button;
  bool pressed;
};

constexpr MouseRow kMouseMessages[] = {
    {WM_LBUTTONDOWN, MouseEvent::kLeft, true},    {WM_LBUTTONDBLCLK, MouseEvent::kLeft, true},
    {WM_LBUTTONUP, MouseEvent::kLeft, false},     {WM_RBUTTONDOWN, MouseEvent::kRight, true},
    {WM_RBUTTONDBLCLK, MouseEvent::kRight, true}, {WM_RBUTTONUP, MouseEvent::kRight, false},
    {WM_MBUTTONDOWN, MouseEvent::kMiddle, true},  {WM_MBUTTONDBLCLK, MouseEvent::kMiddle, true},
    {WM_MBUTTONUP, MouseEvent::kMiddle, false},
};

/// The text that a control's window shows.
std::string ShownText(const Control& control) {
  if (const auto* captioned = dynamic_cast<const CaptionedControl*>(&control)) {
    return captioned->Caption();
  }
  if (const auto* box = dynamic_cast<const TextBox*>(&control)) return box->Text();
  return {};
}

std::string WindowText(HWND window) {
  std::wstring text(static_cast<std::size_t>(::GetWindowTextLengthW(window)) + 1, L'\0');
  const int size = ::GetWindowTextW(window, text.data(), static_cast<int>(text.size()));
  return FromWide({text.data(), static_cast<std::size_t>(size)});
}

int AlignmentStyle(Alignment alignment) {
  switch (alignment) {
    case Alignment::Right:
      return SS_RIGHT;
    case Alignment::Centre:
      return SS_CENTER;
    default:
      return SS_LEFT;
  }
}

/// Runs a window procedure's body; nothing thrown leaves it.
template <class Body>
LRESULT Contained(Body&& body) {
  try {
    return body();
  } catch (...) {
    return 0;
  }
}

WPARAM TimerId(std::int16_t index) {
  return static_cast<WPARAM>(static_cast<std::uint16_t>(index));
}

}  // namespace

void Win32FormView::RegisterClasses(HINSTANCE module) {
  WNDCLASSEXW form{};
  form.cbSize = sizeof form;
  form.style = CS_DBLCLKS;
  form.lpfnWndProc = FormProc;
  form.hInstance = module;
  form.hCursor = ::LoadCursorW(nullptr, IDC_ARROW);
  form.lpszClassName = kFormClass;
  ::RegisterClassExW(&form);
  WNDCLASSEXW picture = form;
  picture.lpfnWndProc = PeerProc<&Win32FormView::HandlePicture>;
  picture.lpszClassName = kPictureClass;
  ::RegisterClassExW(&picture);
}

void Win32FormView::UnregisterClasses(HINSTANCE module) {
  ::UnregisterClassW(kFormClass, module);
  ::UnregisterClassW(kPictureClass, module);
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
  for (const auto& control : form_.Controls()) CreatePeer(*control);
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

Win32FormView::Peer* Win32FormView::PeerOf(const Control& control) const {
  const auto found = peers_.find(&control);
  return found != peers_.end() && found->second->window != nullptr ? found->second.get() : nullptr;
}

Win32FormView::Peer* Win32FormView::PeerOf(HWND window) const {
  for (const auto& [control, peer] : peers_) {
    if (peer->window == window) return peer.get();
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

Image* Win32FormView::ImageBeneath(const Control& control) const {
  const auto* label = dynamic_cast<const Label*>(&control);
  if (label == nullptr || !label->IsTransparent()) return nullptr;
  const RECT area = PixelBounds(control);
  const POINT corner{area.left, area.top};
  for (const auto& other : form_.Controls()) {
    const RECT beneath = PixelBounds(*other);
    if (other->GetKind() == Kind::Image && ::PtInRect(&beneath, corner) != FALSE) {
      return static_cast<Image*>(other.get());
    }
  }
  return nullptr;
}

HWND Win32FormView::CreateControlWindow(Peer& peer) {
  const Control& control = peer.control;
  const KindRow& row = RowOf(control.GetKind());
  DWORD style = row.style | WS_CHILD | WS_CLIPSIBLINGS;
  if (control.IsVisible()) style |= WS_VISIBLE;
  if (!control.IsEnabled()) style |= WS_DISABLED;
  HWND parent = window_;
  if (const auto* label = dynamic_cast<const Label*>(&control)) {
    style |= static_cast<DWORD>(AlignmentStyle(label->GetAlignment()));
    const Image* image = ImageBeneath(control);
    if (image != nullptr && PeerOf(*image) != nullptr) parent = PeerOf(*image)->window;
  }
  return ::CreateWindowExW(row.extendedStyle, row.windowClass, ToWide(ShownText(control)).c_str(),
                           style, 0, 0, 0, 0, parent, nullptr, toolkit_.Module(), nullptr);
}

void Win32FormView::CreatePeer(Control& control) {
  auto& slot = peers_[&control];
  if (!slot) slot = std::make_unique<Peer>(Peer{*this, control, nullptr, nullptr, {}});
  Peer& peer = *slot;
  if (const HWND old = std::exchange(peer.window, nullptr)) ::DestroyWindow(old);
  peer.window = CreateControlWindow(peer);
  if (peer.window == nullptr) throw RuntimeError(ErrorNumber::OutOfMemory, "no window is left");
  ::SetWindowLongPtrW(peer.window, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(&peer));
  if (control.GetKind() != Kind::Image) {
    peer.original = reinterpret_cast<WNDPROC>(
        ::SetWindowLongPtrW(peer.window, GWLP_WNDPROC,
                            reinterpret_cast<LONG_PTR>(&PeerProc<&Win32FormView::HandleControl>)));
  }
  Arrange(peer);
  Changed(control, Property::Font);
  if (const auto* box = dynamic_cast<const TextBox*>(&control)) {
    ::SendMessageW(peer.window, EM_SETLIMITTEXT, box->MaxLength(), 0);
  }
  if (control.GetKind() == Kind::CheckBox) Changed(control, Property::Value);
  if (auto* list = dynamic_cast<ListBox*>(&control)) {
    for (const ListBox::Item& item : list->Items()) {
      ::SendMessageW(peer.window, LB_ADDSTRING, 0,
                     reinterpret_cast<LPARAM>(ToWide(item.text).c_str()));
    }
  }
}

void Win32FormView::Arrange(Peer& peer) {
  RECT area = PixelBounds(peer.control);
  const HWND parent = ::GetAncestor(peer.window, GA_PARENT);
  if (parent != window_) ::MapWindowPoints(window_, parent, reinterpret_cast<POINT*>(&area), 2);
  ::MoveWindow(peer.window, area.left, area.top, area.right - area.left, area.bottom - area.top,
               TRUE);
  if (parent != window_) ::InvalidateRect(parent, nullptr, TRUE);  // the picture shows through
}

/// The control's font. A label's is smaller by whole pixels where its line of text would not fit,
/// for a font of the same name is not of the same width on every machine.
HFONT Win32FormView::FontOf(const Control& control) {
  constexpr double kPointsInPixel = 0.75;
  constexpr double kSmallest = 6;  // points
  double size = control.FontSize();
  if (control.GetKind() != Kind::Label) return fonts_.OfSize(size);
  const RECT area = PixelBounds(control);
  while (size - kPointsInPixel >= kSmallest &&
         TextWidth(fonts_.OfSize(size), ShownText(control)) > area.right - area.left) {
    size -= kPointsInPixel;
  }
  return fonts_.OfSize(size);
}

/// Piles the windows up: what can be reached by Tab first and in its order, which is the order that
/// a host's dialog keys follow; the frames last.
void Win32FormView::Stack() {
  std::vector<Peer*> pile;
  for (Control* control : form_.StackingOrder()) {
    if (Peer* peer = PeerOf(*control)) pile.push_back(peer);
  }
  const auto rank = [](const Peer* peer) {
    const bool reached = (RowOf(peer->control.GetKind()).style & WS_TABSTOP) != 0;
    return reached ? peer->control.TabIndex() : LiesBehind(peer->control.GetKind()) ? 2000 : 1000;
  };
  std::stable_sort(pile.begin(), pile.end(),
                   [&](const Peer* a, const Peer* b) { return rank(a) < rank(b); });
  HWND above = HWND_TOP;
  for (const Peer* peer : pile) {
    if (::GetAncestor(peer->window, GA_PARENT) != window_) continue;
    ::SetWindowPos(peer->window, above, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE | SWP_NOACTIVATE);
    above = peer->window;
  }
}

void Win32FormView::Added(Control& control) {
  CreatePeer(control);
  Stack();
}

void Win32FormView::Changed(Control& control, Property property) {
  Peer* peer = PeerOf(control);
  if (peer == nullptr) return;
  switch (property) {
    case Property::Bounds:
    case Property::Container:
      return Arrange(*peer);
    case Property::Enabled:
      ::EnableWindow(peer->window, control.IsEnabled() ? TRUE : FALSE);
      return;
    case Property::Visible:
      ::ShowWindow(peer->window, control.IsVisible() ? SW_SHOWNA : SW_HIDE);
      return;
    case Property::Focus:
      ::SetFocus(peer->window);
      return;
    case Property::Font:
      ::SendMessageW(peer->window, WM_SETFONT, reinterpret_cast<WPARAM>(FontOf(control)), TRUE);
      return;
    case Property::Text:
      if (WindowText(peer->window) != ShownText(control)) {
        ::SetWindowTextW(peer->window, ToWide(ShownText(control)).c_str());
        Arrange(*peer);
        if (control.GetKind() == Kind::Label) Changed(control, Property::Font);
      }
      return;
    case Property::Value:
      ::SendMessageW(peer->window, BM_SETCHECK,
                     static_cast<WPARAM>(static_cast<CheckBox&>(control).Value()), 0);
      return;
    case Property::Selection:
      ::SendMessageW(peer->window, LB_SETCURSEL,
                     static_cast<WPARAM>(static_cast<ListBox&>(control).SelectedRow()), 0);
      return;
    case Property::Picture:
      ::InvalidateRect(peer->window, nullptr, TRUE);
      return;
    case Property::Look:
      if (control.GetKind() == Kind::Label) CreatePeer(control);  // alignment and parent are fixed
      ::InvalidateRect(peer->window, nullptr, TRUE);
      return;
    case Property::ZOrder:
      return Stack();
  }
}

void Win32FormView::ItemsCleared(ListBox& list) {
  if (const Peer* peer = PeerOf(list)) ::SendMessageW(peer->window, LB_RESETCONTENT, 0, 0);
}

void Win32FormView::ItemAdded(ListBox& list) {
  const Peer* peer = PeerOf(list);
  if (peer == nullptr) return;
  ::SendMessageW(peer->window, LB_ADDSTRING, 0,
                 reinterpret_cast<LPARAM>(ToWide(list.Items().back().text).c_str()));
}

void Win32FormView::ItemChanged(ListBox& list, std::int32_t row) {
  const Peer* peer = PeerOf(list);
  if (peer == nullptr) return;
  const auto index = static_cast<WPARAM>(row);
  const ListBox::Item& item = list.At(row);
  const std::wstring wanted = ToWide(item.text);
  std::wstring shown(
      static_cast<std::size_t>(::SendMessageW(peer->window, LB_GETTEXTLEN, index, 0)) + 1, L'\0');
  ::SendMessageW(peer->window, LB_GETTEXT, index, reinterpret_cast<LPARAM>(shown.data()));
  if (shown.c_str() != wanted) {
    ::SendMessageW(peer->window, LB_DELETESTRING, index, 0);
    ::SendMessageW(peer->window, LB_INSERTSTRING, index, reinterpret_cast<LPARAM>(wanted.c_str()));
    Changed(list, Property::Selection);  // a deleted string takes the selection with it
  }
  ::SendMessageW(peer->window, LB_SETITEMDATA, index, item.data);
}

void Win32FormView::LoadPicture(Control& image, const std::string& path) {
  Peer* peer = PeerOf(image);
  if (peer == nullptr) return;
  peer->picture.Load(path);
  ::InvalidateRect(peer->window, nullptr, TRUE);
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
  const Peer* peer = PeerOf(box);
  if (peer == nullptr) return {};
  DWORD start = 0;
  DWORD end = 0;
  ::SendMessageW(peer->window, EM_GETSEL, reinterpret_cast<WPARAM>(&start),
                 reinterpret_cast<LPARAM>(&end));
  return {start, end - start};
}

std::intptr_t Win32FormView::Send(Control& control, std::uint32_t message, std::uintptr_t wParam,
                                  std::intptr_t lParam) {
  const Peer* peer = PeerOf(control);
  return peer != nullptr ? ::SendMessageA(peer->window, message, wParam, lParam) : 0;
}

// --- window procedures ---

LRESULT CALLBACK Win32FormView::FormProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  if (message == WM_NCCREATE) {
    const auto* creation = reinterpret_cast<const CREATESTRUCTW*>(lParam);
    auto* view = static_cast<Win32FormView*>(creation->lpCreateParams);
    view->window_ = window;
    ::SetWindowLongPtrW(window, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(view));
  }
  auto* view = reinterpret_cast<Win32FormView*>(::GetWindowLongPtrW(window, GWLP_USERDATA));
  if (view == nullptr) return ::DefWindowProcW(window, message, wParam, lParam);
  return Contained([&] {
    const auto keepAlive = view->weak_from_this().lock();
    const auto form = view->form_.KeepAlive();
    return view->HandleForm(message, wParam, lParam);
  });
}

LRESULT Win32FormView::HandleForm(UINT message, WPARAM wParam, LPARAM lParam) {
  switch (message) {
    case WM_ERASEBKGND: {
      RECT area;
      ::GetClientRect(window_, &area);
      ::FillRect(reinterpret_cast<HDC>(wParam), &area,
                 brushes_.OfColour(ToColorRef(form_.Look().backColour)));
      return TRUE;
    }
    case WM_COMMAND:
      HandleCommand(reinterpret_cast<HWND>(lParam), HIWORD(wParam));
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

/// The window is gone, by the form's own doing or by its parent's.
void Win32FormView::Destroyed() {
  if (menuIsOpen_) ::EndMenu();  // its keys went to the window
  window_ = nullptr;
  for (const auto& [control, peer] : peers_) {
    peer->window = nullptr;
    peer->picture = Picture();
  }
  fonts_.Free();
  brushes_.Free();
  if (!std::exchange(closing_, true)) form_.ViewDestroyed();
}

void Win32FormView::HandleCommand(HWND window, WORD notification) {
  Peer* peer = PeerOf(window);
  if (peer == nullptr) return;
  Control& control = peer->control;
  if (auto* box = dynamic_cast<TextBox*>(&control); box != nullptr && notification == EN_CHANGE) {
    box->UserChangedText(WindowText(window));
  } else if (auto* check = dynamic_cast<CheckBox*>(&control);
             check != nullptr && notification == BN_CLICKED) {
    check->UserClicked();
  } else if (auto* list = dynamic_cast<ListBox*>(&control);
             list != nullptr && notification == LBN_SELCHANGE) {
    list->UserSelected(static_cast<std::int32_t>(::SendMessageW(window, LB_GETCURSEL, 0, 0)));
  }
}

LRESULT Win32FormView::ColourOf(HDC context, HWND window) {
  const Peer* peer = PeerOf(window);
  ::SetTextColor(context, ::GetSysColor(COLOR_WINDOWTEXT));
  const auto* label = peer != nullptr ? dynamic_cast<const Label*>(&peer->control) : nullptr;
  if (label != nullptr && label->IsTransparent()) {
    ::SetBkMode(context, TRANSPARENT);
    return reinterpret_cast<LRESULT>(::GetStockObject(HOLLOW_BRUSH));
  }
  COLORREF colour = ToColorRef(form_.Look().backColour);
  if (peer != nullptr && peer->control.BackColour()) {
    colour = ToColorRef(*peer->control.BackColour());
  } else if (peer != nullptr && peer->control.GetKind() == Kind::TextBox) {
    colour = ::GetSysColor(COLOR_WINDOW);
  }
  ::SetBkColor(context, colour);
  return reinterpret_cast<LRESULT>(brushes_.OfColour(colour));
}

template <Win32FormView::PeerHandler Handle>
LRESULT CALLBACK Win32FormView::PeerProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  auto* peer = reinterpret_cast<Peer*>(::GetWindowLongPtrW(window, GWLP_USERDATA));
  if (peer == nullptr) return ::DefWindowProcW(window, message, wParam, lParam);
  return Contained([&] {
    const auto keepAlive = peer->view.weak_from_this().lock();
    const auto form = peer->view.form_.KeepAlive();
    return (peer->view.*Handle)(*peer, message, wParam, lParam);
  });
}

LRESULT Win32FormView::HandleControl(Peer& peer, UINT message, WPARAM wParam, LPARAM lParam) {
  const HWND window = peer.window;
  const WNDPROC original = peer.original;
  const auto byDefault = [&] {
    return ::CallWindowProcW(original, window, message, wParam, lParam);
  };
  if (message == WM_NCDESTROY) {
    ::SetWindowLongPtrW(window, GWLP_USERDATA, 0);
    return ::CallWindowProcW(original, window, message, wParam, lParam);
  }
  if (HandleKey(peer, message, wParam)) return 0;
  const bool hasMenu = static_cast<bool>(peer.control.onMouseDown);
  if (message == WM_CONTEXTMENU && hasMenu) return 0;  // the control's own menu has been shown
  if (!HandleMouse(peer, message, lParam)) return byDefault();
  // A right press is the model's alone; after any other the control does what it does.
  const bool isRight = message == WM_RBUTTONDOWN || message == WM_RBUTTONUP;
  if ((isRight && hasMenu) || ::IsWindow(window) == FALSE) return 0;
  return byDefault();
}

bool Win32FormView::HandleKey(Peer& peer, UINT message, WPARAM key) {
  if (key != VK_TAB || (RowOf(peer.control.GetKind()).style & WS_TABSTOP) == 0) return false;
  if (message == WM_KEYDOWN) FocusNext(peer, ::GetKeyState(VK_SHIFT) < 0);
  return message == WM_KEYDOWN || message == WM_CHAR;
}

void Win32FormView::FocusNext(const Peer& from, bool backwards) {
  std::vector<const Peer*> order;
  for (const auto& [control, peer] : peers_) {
    const bool reached = (RowOf(control->GetKind()).style & WS_TABSTOP) != 0;
    if (reached && control->IsEnabled() && control->IsVisible()) order.push_back(peer.get());
  }
  std::sort(order.begin(), order.end(), [](const Peer* a, const Peer* b) {
    return a->control.TabIndex() < b->control.TabIndex();
  });
  const auto at = std::find(order.begin(), order.end(), &from);
  if (at == order.end()) return;
  const std::size_t step = backwards ? order.size() - 1 : 1;
  const auto next = (static_cast<std::size_t>(at - order.begin()) + step) % order.size();
  ::SetFocus(order[next]->window);
}

bool Win32FormView::HandleMouse(Peer& peer, UINT message, LPARAM lParam) {
  const auto row =
      std::find_if(std::begin(kMouseMessages), std::end(kMouseMessages),
                   [message](const MouseRow& other) { return other.message == message; });
  if (row == std::end(kMouseMessages)) return false;
  const TwipsPerPixel screen = toolkit_.ScreenTwipsPerPixel();
  const MouseEvent event{row->button, 0,
                         static_cast<float>(GET_X_LPARAM(lParam) * screen.horizontal),
                         static_cast<float>(GET_Y_LPARAM(lParam) * screen.vertical)};
  const HWND window = peer.window;
  // What receives a press receives its release, wherever the pointer is by then.
  const bool captures =
      peer.control.GetKind() == Kind::Label || peer.control.GetKind() == Kind::Image;
  if (captures && row->pressed) ::SetCapture(window);
  if (captures && !row->pressed && ::GetCapture() == window) ::ReleaseCapture();
  if (row->pressed) {
    peer.control.UserPressed(event);
  } else {
    peer.control.UserReleased(event);
  }
  return true;
}

LRESULT Win32FormView::HandlePicture(Peer& peer, UINT message, WPARAM wParam, LPARAM lParam) {
  const HWND window = peer.window;
  switch (message) {
    case WM_PAINT:
      Paint(peer);
      return 0;
    case WM_ERASEBKGND:
      return TRUE;  // painted all over
    case WM_CTLCOLORSTATIC:
      return ColourOf(reinterpret_cast<HDC>(wParam), reinterpret_cast<HWND>(lParam));
    case WM_NCDESTROY:
      ::SetWindowLongPtrW(window, GWLP_USERDATA, 0);
      return ::DefWindowProcW(window, message, wParam, lParam);
    default:
      if (HandleMouse(peer, message, lParam)) return 0;
      return ::DefWindowProcW(window, message, wParam, lParam);
  }
}

void Win32FormView::Paint(Peer& peer) {
  PAINTSTRUCT paint;
  const HDC context = ::BeginPaint(peer.window, &paint);
  RECT area;
  ::GetClientRect(peer.window, &area);
  if (peer.picture.IsLoaded()) {
    ::FillRect(context, &area, brushes_.OfColour(ToColorRef(form_.Look().backColour)));
    peer.picture.Draw(context, area);
  } else {  // without its picture an image button is still seen to be one
    ::DrawFrameControl(context, &area, DFC_BUTTON, DFCS_BUTTONPUSH);
  }
  ::EndPaint(peer.window, &paint);
}

}  // namespace rotacasts::win32
