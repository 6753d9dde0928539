#include "program/win32/frame_window.h"

#include <algorithm>
#include <cmath>
#include <memory>

#include "base/runtime_error.h"
#include "siblings/plain_words.h"
#include "ui/layout.h"

namespace rotacasts::host {
namespace {

constexpr const wchar_t* kClass = L"rotacasts.host";
constexpr const wchar_t* kAreaClass = L"rotacasts.host.area";
constexpr const wchar_t* kTitle = L"Rotacasts host";
constexpr const char* kNothingChosen = "Choose a profile at the left.";

// Lengths in pixels at 96 dots per inch.
constexpr int kMargin = 8;
constexpr int kCaptionHeight = 18;
constexpr int kNarrowestList = 140;
constexpr int kWidestList = 280;
constexpr int kListPadding = 16;  // next to its longest row
// The plugin puts its window 2 pixels from the left and 30 from the top of the area, and makes it
// 28 lower than the area's height; 2 more are left free at the right and at the bottom.
constexpr int kBesidePlugin = 4;
constexpr int kBelowPlugin = 4;
constexpr double kHeadingSize = 10;  // points

constexpr double kTwipsPerPixel = 15;

int Dpi() {
  return ::GetDeviceCaps(win32::DeviceContext().Get(), LOGPIXELSX);
}

int Scaled(int pixels) {
  return ::MulDiv(pixels, Dpi(), 96);
}

/// Rounded up, so that the plugin's division gives the same number of whole pixels.
std::int32_t Twips(LONG pixels) {
  return (pixels * 1440 + Dpi() - 1) / Dpi();
}

/// The area only reserves space; the frame draws its background and heading.
LRESULT CALLBACK AreaProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  if (message == WM_CTLCOLORSTATIC || message == WM_ERASEBKGND) {
    return ::SendMessageW(::GetParent(window), message, wParam, lParam);
  }
  return ::DefWindowProcW(window, message, wParam, lParam);
}

void RegisterClasses(WNDPROC procedure) {
  WNDCLASSEXW frame{};
  frame.cbSize = sizeof frame;
  frame.lpfnWndProc = procedure;
  frame.hInstance = ::GetModuleHandleW(nullptr);
  frame.hIcon = ::LoadIconW(frame.hInstance, MAKEINTRESOURCEW(1));
  frame.hCursor = ::LoadCursorW(nullptr, IDC_ARROW);
  frame.lpszClassName = kClass;
  ::RegisterClassExW(&frame);
  WNDCLASSEXW area = frame;
  area.lpfnWndProc = AreaProcedure;
  area.lpszClassName = kAreaClass;
  ::RegisterClassExW(&area);
}

}  // namespace

FrameWindow::FrameWindow(std::vector<Row> rows)
    : rows_(std::move(rows)), fonts_(layout::kFontFace) {
  RegisterClasses(Procedure);
  ::CreateWindowExW(WS_EX_CONTROLPARENT, kClass, kTitle, WS_OVERLAPPEDWINDOW | WS_CLIPCHILDREN,
                    CW_USEDEFAULT, CW_USEDEFAULT, CW_USEDEFAULT, CW_USEDEFAULT, nullptr, nullptr,
                    ::GetModuleHandleW(nullptr), this);
  if (window_ == nullptr) throw RuntimeError(ErrorNumber::OutOfMemory, "no window is left");
  CreateParts();
  FillList();
  Shown(0);
  const SIZE size = SmallestSize();
  ::SetWindowPos(window_, nullptr, 0, 0, size.cx, size.cy, SWP_NOMOVE | SWP_NOZORDER);
  ::ShowWindow(window_, SW_SHOW);
  ::SetFocus(list_);
}

FrameWindow::~FrameWindow() {
  ::DestroyWindow(window_);
}

void FrameWindow::CreateParts() {
  caption_ = CreatePart(window_, 0, L"STATIC", L"&Profiles", 0, layout::kFontSize);
  list_ = CreatePart(
      window_, WS_EX_CLIENTEDGE, L"LISTBOX", L"",
      LBS_NOTIFY | LBS_HASSTRINGS | LBS_NOINTEGRALHEIGHT | WS_VSCROLL | WS_HSCROLL | WS_TABSTOP,
      layout::kFontSize);
  area_ =
      CreatePart(window_, WS_EX_CONTROLPARENT, kAreaClass, L"", WS_CLIPCHILDREN, layout::kFontSize);
  heading_ = CreatePart(area_, 0, L"STATIC", L"", SS_CENTERIMAGE | SS_NOPREFIX | SS_ENDELLIPSIS,
                        kHeadingSize);
}

HWND FrameWindow::CreatePart(HWND parent, DWORD extendedStyle, const wchar_t* windowClass,
                             const wchar_t* text, DWORD style, double points) {
  const HWND part =
      ::CreateWindowExW(extendedStyle, windowClass, text, style | WS_CHILD | WS_VISIBLE, 0, 0, 0, 0,
                        parent, nullptr, ::GetModuleHandleW(nullptr), nullptr);
  if (part == nullptr) throw RuntimeError(ErrorNumber::OutOfMemory, "no window is left");
  ::SendMessageW(part, WM_SETFONT, reinterpret_cast<WPARAM>(fonts_.OfSize(points)), FALSE);
  return part;
}

/// Fills the list and makes it as wide as its longest row, within limits; longer rows can be
/// scrolled.
void FrameWindow::FillList() {
  LONG longest = 0;
  for (const Row& row : rows_) {
    const std::wstring label = win32::ToWide(row.label);
    ::SendMessageW(list_, LB_ADDSTRING, 0, reinterpret_cast<LPARAM>(label.c_str()));
    longest = std::max(longest, win32::TextWidth(fonts_.OfSize(layout::kFontSize), row.label));
  }
  ::SendMessageW(list_, LB_SETHORIZONTALEXTENT, static_cast<WPARAM>(longest + Scaled(4)), 0);
  listWidth_ = std::clamp(static_cast<int>(longest) + Scaled(kListPadding), Scaled(kNarrowestList),
                          Scaled(kWidestList));
}

SIZE FrameWindow::SmallestSize() const {
  const auto pixels = [](std::int32_t twips) {
    return Scaled(static_cast<int>(std::ceil(twips / kTwipsPerPixel)));
  };
  RECT area = {
      0, 0, 3 * Scaled(kMargin) + listWidth_ + pixels(layout::kClientWidth) + kBesidePlugin,
      2 * Scaled(kMargin) + pixels(layout::kClientHeight) + layout::kHeadingHeight + kBelowPlugin};
  ::AdjustWindowRectEx(&area, WS_OVERLAPPEDWINDOW, FALSE, 0);
  return {area.right - area.left, area.bottom - area.top};
}

void FrameWindow::Arrange() const {
  RECT all;
  ::GetClientRect(window_, &all);
  const int margin = Scaled(kMargin);
  const int caption = Scaled(kCaptionHeight);
  const int width = static_cast<int>(all.right);
  const int height = static_cast<int>(all.bottom);
  const int areaLeft = 2 * margin + listWidth_;
  ::MoveWindow(caption_, margin, margin, listWidth_, caption, TRUE);
  ::MoveWindow(list_, margin, margin + caption, listWidth_, height - 2 * margin - caption, TRUE);
  ::MoveWindow(area_, areaLeft, margin, width - areaLeft - margin, height - 2 * margin, TRUE);
  ::MoveWindow(heading_, 2, 0, width - areaLeft - margin - kBesidePlugin, layout::kHeadingHeight,
               TRUE);
}

HBRUSH FrameWindow::Face() {
  return brushes_.OfColour(win32::ToColorRef(layout::kFace));
}

void FrameWindow::LimitSize(MINMAXINFO& limits) const {
  const SIZE size = SmallestSize();
  limits.ptMinTrackSize = {size.cx, size.cy};
}

void FrameWindow::EraseBackground(HDC target) {
  RECT all;
  ::GetClientRect(window_, &all);
  ::FillRect(target, &all, Face());  // the same colour as the plugin's window
}

PluginArea FrameWindow::Area() const {
  RECT area;
  ::GetClientRect(area_, &area);
  return {reinterpret_cast<forms::WindowHandle>(area_), Twips(area.right - kBesidePlugin),
          Twips(area.bottom - kBelowPlugin)};
}

void FrameWindow::Shown(std::int32_t profile) {
  const auto row = std::find_if(rows_.begin(), rows_.end(),
                                [profile](const Row& other) { return other.profile == profile; });
  const bool found = row != rows_.end();
  ::SendMessageW(list_, LB_SETCURSEL,
                 found ? static_cast<WPARAM>(row - rows_.begin()) : static_cast<WPARAM>(-1), 0);
  ::SetWindowTextW(heading_, win32::ToWide(found ? row->label : kNothingChosen).c_str());
}

void FrameWindow::HandleCommand(HWND control, WORD code) {
  if (control == list_ && code == LBN_SELCHANGE) HandleChoice();
}

void FrameWindow::HandleChoice() {
  const LRESULT row = ::SendMessageW(list_, LB_GETCURSEL, 0, 0);
  if (row < 0 || !onChoose) return;
  try {
    onChoose(rows_[static_cast<std::size_t>(row)].profile);
  } catch (...) {
    const std::wstring text = win32::ToWide(PlainWords(CurrentRuntimeError()));
    ::MessageBoxW(window_, text.c_str(), kTitle, MB_OK | MB_ICONWARNING);
  }
}

void FrameWindow::HandleConsole(UINT message, LPARAM what) {
  if (message == kConsoleQuestion) {
    if (onConsoleQuestion) onConsoleQuestion(*reinterpret_cast<ConsoleQuestion*>(what));
    return;
  }
  const std::unique_ptr<std::string> text(reinterpret_cast<std::string*>(what));
  if (onConsoleLine && !onConsoleLine(*text)) ::PostQuitMessage(0);
}

LRESULT CALLBACK FrameWindow::Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  if (message == WM_NCCREATE) {
    auto* frame =
        static_cast<FrameWindow*>(reinterpret_cast<const CREATESTRUCTW*>(lParam)->lpCreateParams);
    frame->window_ = window;
    ::SetWindowLongPtrW(window, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(frame));
  }
  auto* frame = reinterpret_cast<FrameWindow*>(::GetWindowLongPtrW(window, GWLP_USERDATA));
  if (frame == nullptr) return ::DefWindowProcW(window, message, wParam, lParam);
  try {
    return frame->Handle(message, wParam, lParam);
  } catch (...) {
    return 0;
  }
}

LRESULT FrameWindow::Handle(UINT message, WPARAM wParam, LPARAM lParam) {
  switch (message) {
    case WM_SIZE:
      if (area_ != nullptr) Arrange();
      return 0;
    case WM_GETMINMAXINFO:
      LimitSize(*reinterpret_cast<MINMAXINFO*>(lParam));
      return 0;
    case WM_ERASEBKGND:
      EraseBackground(reinterpret_cast<HDC>(wParam));
      return TRUE;
    case WM_CTLCOLORSTATIC:
      ::SetBkMode(reinterpret_cast<HDC>(wParam), TRANSPARENT);
      return reinterpret_cast<LRESULT>(Face());
    case WM_COMMAND:
      HandleCommand(reinterpret_cast<HWND>(lParam), HIWORD(wParam));
      return 0;
    case WM_ACTIVATE:  // remembered, so that the control gets the focus back
      if (LOWORD(wParam) == WA_INACTIVE) lastFocus_ = ::GetFocus();
      return 0;
    case WM_SETFOCUS:
      ::SetFocus(::IsChild(window_, lastFocus_) != FALSE ? lastFocus_ : list_);
      return 0;
    case kConsoleLine:
    case kConsoleQuestion:
      HandleConsole(message, lParam);
      return 0;
    case WM_ENDSESSION:
      if (wParam != FALSE && onSessionEnd) onSessionEnd();
      return 0;
    case WM_CLOSE:
      ::PostQuitMessage(0);
      return 0;
    case WM_NCDESTROY:
      ::SetWindowLongPtrW(window_, GWLP_USERDATA, 0);
      return ::DefWindowProcW(window_, message, wParam, lParam);
    default:
      return ::DefWindowProcW(window_, message, wParam, lParam);
  }
}

void RunMessageLoop(const FrameWindow& frame) {
  MSG message;
  while (::GetMessageW(&message, nullptr, 0, 0) > 0) {
    if (::IsDialogMessageW(frame.Window(), &message) != FALSE) continue;
    ::TranslateMessage(&message);
    ::DispatchMessageW(&message);
  }
}

}  // namespace rotacasts::host
