#include "support/component_test.h"

#include <cmath>

#include "com/variant_conversion.h"
#include "ui/layout.h"

namespace rotacasts::testing {
namespace {

using win32::ComVariant;

RECT PixelsOf(const forms::Rectangle& twips, const forms::Rectangle& container) {
  const HDC screen = ::GetDC(nullptr);
  const double twipsPerPixel = 1440.0 / ::GetDeviceCaps(screen, LOGPIXELSX);
  ::ReleaseDC(nullptr, screen);
  const auto pixels = [=](std::int32_t length) { return std::lround(length / twipsPerPixel); };
  const std::int32_t left = twips.left + container.left;
  const std::int32_t top = twips.top + container.top;
  return {pixels(left), pixels(top), pixels(left + twips.width), pixels(top + twips.height)};
}

const layout::ControlRow& RowOf(std::string_view name) {
  for (const layout::ControlRow& row : layout::Controls()) {
    if (row.name == name) return row;
  }
  throw std::invalid_argument(std::string(name));
}

const wchar_t* ClassOf(forms::Kind kind) {
  switch (kind) {
    case forms::Kind::Frame:
    case forms::Kind::CheckBox:
      return L"Button";
    case forms::Kind::TextBox:
      return L"Edit";
    case forms::Kind::ListBox:
      return L"ListBox";
    case forms::Kind::Label:
      return L"Static";
    default:
      return L"rotacasts.picture";
  }
}

/// The child of that class at that place; null when there is none.
HWND ChildAt(HWND form, const wchar_t* windowClass, const RECT& place) {
  for (HWND child = nullptr;
       (child = ::FindWindowExW(form, child, windowClass, nullptr)) != nullptr;) {
    RECT area;
    ::GetWindowRect(child, &area);
    ::MapWindowPoints(nullptr, form, reinterpret_cast<POINT*>(&area), 2);
    if (::EqualRect(&area, &place) != FALSE) return child;
  }
  return nullptr;
}

class ComEnvironment final : public ::testing::Environment {
 public:
  void SetUp() override { ::CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED); }
  void TearDown() override { ::CoUninitialize(); }
};

const ::testing::Environment* const theCom =
    ::testing::AddGlobalTestEnvironment(new ComEnvironment);

}  // namespace

Frame::Frame()
    : window_(::CreateWindowExW(0, L"STATIC", L"Host", WS_OVERLAPPEDWINDOW | WS_VISIBLE, 20, 20,
                                900, 600, nullptr, nullptr, nullptr, nullptr)) {
  ::SetForegroundWindow(window_);
}

InstalledPlugin& Installed() {
  static InstalledPlugin installed;
  return installed;
}

ComponentTest::~ComponentTest() {
  if (plugin) Call("UnLoadInterface", {""});
  plugin.reset();
  EXPECT_EQ(installed.CallEntry("DllCanUnloadNow"), S_OK) << "something still holds the DLL";
}

Variant ComponentTest::Call(const char* member, std::vector<Variant> arguments) const {
  std::vector<ComVariant> owned;
  std::vector<VARIANT> values;
  for (const Variant& argument : arguments) owned.push_back(win32::ToVariant(argument));
  for (const ComVariant& value : owned) values.insert(values.begin(), value.Get());
  return win32::FromVariant(
      plugin->Invoke(plugin->Identify(member), values.data(), values.size()).Get());
}

void ComponentTest::Load(std::int32_t index, const std::string& gameCode) const {
  const auto parent = static_cast<std::int32_t>(reinterpret_cast<std::intptr_t>(frame->Get()));
  Variant::Array data = *ProfileData(index, gameCode).AsArray();
  data[pdat::kAreaWidth] = layout::kClientWidth;
  data[pdat::kAreaHeight] = layout::kClientHeight + layout::kHeadingHeight * 15;
  Call("LoadInterface", {index, parent, data, ""});
}

HWND ComponentTest::Form() const {
  return ::FindWindowExW(frame->Get(), nullptr, L"rotacasts.form", nullptr);
}

HWND ComponentTest::Control(const char* name) const {
  const layout::ControlRow& row = RowOf(name);
  const forms::Rectangle container =
      row.container.empty() ? forms::Rectangle{} : RowOf(row.container).bounds;
  const HWND found = ChildAt(Form(), ClassOf(row.kind), PixelsOf(row.bounds, container));
  EXPECT_NE(found, nullptr) << name;
  return found;
}

HWND ComponentTest::AddButton() const {
  return ChildAt(Form(), ClassOf(forms::Kind::Image),
                 PixelsOf(layout::kAddButton, RowOf("Frame2").bounds));
}

std::string ComponentTest::TextOf(const char* control) const {
  wchar_t text[200];
  const LRESULT size =
      ::SendMessageW(Control(control), WM_GETTEXT, 200, reinterpret_cast<LPARAM>(text));
  return win32::FromWide({text, static_cast<std::size_t>(size)});
}

std::vector<std::string> ComponentTest::Rows() const {
  const HWND list = Control("lstMessages");
  std::vector<std::string> rows(static_cast<std::size_t>(::SendMessageW(list, LB_GETCOUNT, 0, 0)));
  for (std::size_t i = 0; i < rows.size(); ++i) {
    wchar_t text[200];
    const LRESULT size = ::SendMessageW(list, LB_GETTEXT, i, reinterpret_cast<LPARAM>(text));
    rows[i] = win32::FromWide({text, static_cast<std::size_t>(size)});
  }
  return rows;
}

}  // namespace rotacasts::testing
