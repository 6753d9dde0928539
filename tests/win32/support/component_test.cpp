#include "support/component_test.h"

#include <algorithm>

#include "com/variant_conversion.h"
#include "forms/win32/gdi.h"
#include "ui/layout.h"

#include <psapi.h>  // needs the types of windows.h

namespace rotacasts {
inline namespace testing {
namespace {

using win32::ComVariant;

constexpr int kFirstControl = 1000;  // the controls' identifiers follow in their order

}  // namespace

Frame::Frame()
    : window_(::CreateWindowExW(0, L"STATIC", L"Host", WS_OVERLAPPEDWINDOW | WS_VISIBLE, 20, 20,
                                900, 600, nullptr, nullptr, nullptr, nullptr)) {
  ::SetForegroundWindow(window_);
}

std::size_t PrivateBytes() {
  PROCESS_MEMORY_COUNTERS counters{};
  ::GetProcessMemoryInfo(::GetCurrentProcess(), &counters, sizeof counters);
  return counters.PagefileUsage;
}

ComponentTest::~ComponentTest() {
  if (plugin) Call("UnLoadInterface", {""});
  plugin.reset();
  EXPECT_EQ(installed.CallEntry("DllCanUnloadNow"), S_OK) << "something still holds the DLL";
}

HostValue ComponentTest::Call(const char* member, std::vector<HostValue> arguments) const {
  std::vector<ComVariant> owned;
  std::vector<VARIANT> values;
  for (const HostValue& argument : arguments) owned.push_back(win32::ToComVariant(argument));
  for (const ComVariant& value : owned) values.insert(values.begin(), value.Get());
  return win32::ToHostValue(
      plugin->Invoke(plugin->Identify(member), values.data(), values.size()).Get());
}

void ComponentTest::Load(std::int32_t index, const std::string& gameCode) const {
  const auto parent = static_cast<std::int32_t>(reinterpret_cast<std::intptr_t>(frame->Get()));
  constexpr std::int32_t kHeight = layout::kClientHeight + layout::kHeadingHeight * 15;
  const HostValue data = Data(
      index, gameCode, {{pdat::kAreaWidth, layout::kClientWidth}, {pdat::kAreaHeight, kHeight}});
  Call("LoadInterface", {index, parent, data, ""});
}

void ComponentTest::Show(const Texts& messages) {
  host.MessageFile(2) = MessageFileBytes(messages);
  Load(2);
  ::UpdateWindow(Form());
  PumpWaiting();
}

HWND ComponentTest::Form() const {
  return ::FindWindowExW(frame->Get(), nullptr, L"rotacasts.form", nullptr);
}

HWND ComponentTest::Control(std::string_view name) const {
  const auto row = std::ranges::find(layout::Controls(), name, &layout::ControlRow::name);
  const auto place = static_cast<int>(row - layout::Controls().begin());
  const HWND found = ::GetDlgItem(Form(), kFirstControl + place);
  EXPECT_NE(found, nullptr) << name;
  return found;
}

HWND ComponentTest::AddButton() const {
  return ::GetDlgItem(Form(), kFirstControl + static_cast<int>(layout::Controls().size()));
}

std::string ComponentTest::TextOf(std::string_view control) const {
  return win32::TextOf(Control(control));
}

Texts ComponentTest::Rows() const {
  const HWND list = Control("lstMessages");
  Texts rows(static_cast<std::size_t>(::SendMessageW(list, LB_GETCOUNT, 0, 0)));
  for (std::size_t i = 0; i < rows.size(); ++i) {
    wchar_t text[200];
    const LRESULT size = ::SendMessageW(list, LB_GETTEXT, i, reinterpret_cast<LPARAM>(text));
    rows[i] = win32::FromWide({text, static_cast<std::size_t>(size)});
  }
  return rows;
}

void ComponentTest::RightClickRow(int row) const {
  const HWND list = Control("lstMessages");
  RECT item;
  ::SendMessageW(list, LB_GETITEMRECT, static_cast<WPARAM>(row), reinterpret_cast<LPARAM>(&item));
  ::SendMessageW(list, WM_RBUTTONDOWN, MK_RBUTTON, MAKELPARAM(item.left + 9, item.top + 3));
  PumpWaiting();
}

}  // namespace testing
}  // namespace rotacasts
