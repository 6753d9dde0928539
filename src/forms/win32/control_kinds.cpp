// The window of each kind of control: how it is created, what it shows, which notifications it
// handles.

#include "base/runtime_error.h"
#include "forms/win32/control_window.h"
#include "forms/win32/form_view.h"
#include "forms/win32/win32_toolkit.h"

namespace rotacasts::win32 {
namespace {

using namespace forms;

/// A control window that knows the class of its model.
template <class ModelClass>
class WindowOf : public ControlWindow {
 public:
  WindowOf(Win32FormView& view, ModelClass& model) : ControlWindow(view, model), model_(model) {}

 protected:
  ModelClass& model_;
};

class FrameWindow final : public WindowOf<Frame> {
 public:
  using WindowOf::WindowOf;
  bool LiesBehind() const override { return true; }

 private:
  Recipe WindowRecipe() const override { return {L"BUTTON", BS_GROUPBOX, WS_EX_TRANSPARENT}; }
  std::string Text() const override { return model_.Caption(); }
};

class TextBoxWindow final : public WindowOf<TextBox> {
 public:
  using WindowOf::WindowOf;
  bool IsReachedByTab() const override { return true; }
  void Notified(WORD notification) override {
    if (notification == EN_CHANGE) model_.UserChangedText(TextOf(Window()));
  }
  HBRUSH Colour(HDC context) const override {
    if (model_.BackColour()) return ControlWindow::Colour(context);
    ::SetTextColor(context, ::GetSysColor(COLOR_WINDOWTEXT));
    ::SetBkColor(context, ::GetSysColor(COLOR_WINDOW));
    return ::GetSysColorBrush(COLOR_WINDOW);
  }

 private:
  Recipe WindowRecipe() const override {
    return {L"EDIT", ES_AUTOHSCROLL | WS_TABSTOP, WS_EX_CLIENTEDGE};
  }
  std::string Text() const override { return model_.Text(); }
  void Fill() override { Send(EM_SETLIMITTEXT, model_.MaxLength()); }
};

class CheckBoxWindow final : public WindowOf<CheckBox> {
 public:
  using WindowOf::WindowOf;
  bool IsReachedByTab() const override { return true; }
  void Changed(Property property) override {
    if (property == Property::Value) {
      Send(BM_SETCHECK, static_cast<WPARAM>(model_.Value()));
    } else {
      ControlWindow::Changed(property);
    }
  }
  void Notified(WORD notification) override {
    if (notification == BN_CLICKED) model_.UserClicked();
  }

 private:
  Recipe WindowRecipe() const override { return {L"BUTTON", BS_3STATE | WS_TABSTOP, 0}; }
  void Fill() override { Changed(Property::Value); }

  /// A check box draws the focus mark around its caption. This one has no caption, so it is drawn
  /// here.
  LRESULT Handle(UINT message, WPARAM wParam, LPARAM lParam) override {
    const HWND window = Window();
    if (message == WM_PAINT) Redraw();  // all of it, because the mark inverts what is below
    const LRESULT result = ControlWindow::Handle(message, wParam, lParam);
    switch (message) {
      case WM_PAINT:
        MarkFocus();
        break;
      case WM_SETFOCUS:
      case WM_KILLFOCUS:
      case WM_UPDATEUISTATE:
      case WM_ENABLE:
      case BM_SETCHECK:
      case BM_SETSTATE:
        ::InvalidateRect(window, nullptr, TRUE);  // it was just drawn without the mark
        break;
      default:
        break;
    }
    return result;
  }

  void MarkFocus() const {
    const bool isHidden = (Send(WM_QUERYUISTATE) & UISF_HIDEFOCUS) != 0;
    if (::GetFocus() != Window() || isHidden) return;
    RECT area;
    ::GetClientRect(Window(), &area);
    ::DrawFocusRect(DeviceContext(Window()).Get(), &area);
  }
};

class ListBoxWindow final : public WindowOf<ListBox> {
 public:
  using WindowOf::WindowOf;
  bool IsReachedByTab() const override { return true; }
  void Changed(Property property) override {
    if (property == Property::Selection) {
      Send(LB_SETCURSEL, static_cast<WPARAM>(model_.SelectedRow()));
    } else {
      ControlWindow::Changed(property);
    }
  }
  void Notified(WORD notification) override {
    if (notification == LBN_SELCHANGE) {
      model_.UserSelected(static_cast<std::int32_t>(Send(LB_GETCURSEL)));
    }
  }

  void ItemsCleared() override { Send(LB_RESETCONTENT); }
  void ItemAdded() override { Append(model_.Items().back()); }
  void ItemChanged(std::int32_t row) override {
    const ListBox::Item& item = model_.At(row);
    const auto index = static_cast<WPARAM>(row);
    const std::wstring wanted = ToWide(item.text);
    std::wstring shown(static_cast<std::size_t>(Send(LB_GETTEXTLEN, index)) + 1, L'\0');
    Send(LB_GETTEXT, index, reinterpret_cast<LPARAM>(shown.data()));
    if (shown.c_str() != wanted) {
      Send(LB_DELETESTRING, index);
      Send(LB_INSERTSTRING, index, reinterpret_cast<LPARAM>(wanted.c_str()));
      Changed(Property::Selection);  // a deleted string takes the selection with it
    }
    Send(LB_SETITEMDATA, index, item.data);
  }

 private:
  Recipe WindowRecipe() const override {
    return {L"LISTBOX",
            LBS_NOTIFY | LBS_HASSTRINGS | LBS_NOINTEGRALHEIGHT | WS_VSCROLL | WS_TABSTOP,
            WS_EX_CLIENTEDGE};
  }
  void Fill() override {
    for (const ListBox::Item& item : model_.Items()) Append(item);
  }
  void Append(const ListBox::Item& item) const {
    Send(LB_ADDSTRING, 0, reinterpret_cast<LPARAM>(ToWide(item.text).c_str()));
  }
};

class LabelWindow final : public WindowOf<Label> {
 public:
  using WindowOf::WindowOf;
  void Changed(Property property) override {
    // Alignment and parent are fixed when the window is created.
    if (property == Property::Look) return view_.Make(model_);
    ControlWindow::Changed(property);
    if (property == Property::Text) Changed(Property::Font);
  }
  HBRUSH Colour(HDC context) const override {
    const HBRUSH back = ControlWindow::Colour(context);
    if (!model_.IsTransparent()) return back;
    ::SetBkMode(context, TRANSPARENT);
    return static_cast<HBRUSH>(::GetStockObject(HOLLOW_BRUSH));
  }

 private:
  Recipe WindowRecipe() const override {
    constexpr DWORD kAlignments[] = {SS_LEFT, SS_RIGHT, SS_CENTER};
    return {L"STATIC",
            SS_NOTIFY | SS_NOPREFIX | kAlignments[static_cast<int>(model_.GetAlignment())], 0};
  }
  std::string Text() const override { return model_.Caption(); }
  /// A transparent label over an image is a child of its window, so that the image shows through.
  HWND Parent() const override {
    const HWND image = model_.IsTransparent() ? view_.ImageBeneath(model_) : nullptr;
    return image != nullptr ? image : ControlWindow::Parent();
  }
  /// Shrinks the font by whole pixels until the line fits. The window is laid out for Windows'
  /// Tahoma, and Wine's is wider.
  HFONT Font() const override {
    constexpr double kTwipsPerPoint = 20;
    constexpr double kSmallest = 6;  // points
    const double pixel = view_.Toolkit().ScreenTwipsPerPixel().vertical / kTwipsPerPoint;
    const RECT area = view_.PixelBounds(model_);
    double size = model_.FontSize();
    while (size - pixel >= kSmallest &&
           TextWidth(view_.FontOfSize(size), Text()) > area.right - area.left) {
      size -= pixel;
    }
    return view_.FontOfSize(size);
  }
};

class ImageWindow final : public WindowOf<Image> {
 public:
  using WindowOf::WindowOf;
  void LoadPicture(const std::string& path) override {
    picture_.Load(path);
    Redraw();
  }
  void Gone() override {
    ControlWindow::Gone();
    picture_ = Picture();
  }

 private:
  Recipe WindowRecipe() const override { return {kPictureClass, 0, 0}; }

  LRESULT Handle(UINT message, WPARAM wParam, LPARAM lParam) override {
    switch (message) {
      case WM_PAINT:
        Paint();
        return 0;
      case WM_ERASEBKGND:
        return TRUE;  // WM_PAINT covers everything
      case WM_CTLCOLORSTATIC:
        return view_.ColourOf(reinterpret_cast<HDC>(wParam), reinterpret_cast<HWND>(lParam));
      default:
        return ControlWindow::Handle(message, wParam, lParam);
    }
  }

  void Paint() {
    PAINTSTRUCT paint;
    const HDC context = ::BeginPaint(Window(), &paint);
    RECT area;
    ::GetClientRect(Window(), &area);
    if (picture_.IsLoaded()) {
      ::FillRect(context, &area, view_.Brush(ToColorRef(view_.BackColour())));
      picture_.Draw(context, area);
    } else {  // draws a button, so that it can be found without its picture
      ::DrawFrameControl(context, &area, DFC_BUTTON, DFCS_BUTTONPUSH);
    }
    ::EndPaint(Window(), &paint);
  }

  Picture picture_;
};

}  // namespace

std::unique_ptr<ControlWindow> MakeControlWindow(Win32FormView& view, Control& control) {
  switch (control.GetKind()) {
    case Kind::Frame:
      return std::make_unique<FrameWindow>(view, static_cast<Frame&>(control));
    case Kind::TextBox:
      return std::make_unique<TextBoxWindow>(view, static_cast<TextBox&>(control));
    case Kind::CheckBox:
      return std::make_unique<CheckBoxWindow>(view, static_cast<CheckBox&>(control));
    case Kind::ListBox:
      return std::make_unique<ListBoxWindow>(view, static_cast<ListBox&>(control));
    case Kind::Label:
      return std::make_unique<LabelWindow>(view, static_cast<Label&>(control));
    case Kind::Image:
      return std::make_unique<ImageWindow>(view, static_cast<Image&>(control));
  }
  throw RuntimeError(ErrorNumber::InternalError, control.Name());
}

}  // namespace rotacasts::win32
