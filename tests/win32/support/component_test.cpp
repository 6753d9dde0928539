#include "support/component_test.h"

#include <algorithm>

#include "com/variant_conversion.h"
#include "ui/layout.h"

#include <psapi.h>  // needs the types of the system's main header

namespace rotacasts::testing {
namespace {

using win32::ComVariant;

constexpr int kFirstControl = 1000;  // the controls' identifiers go on in their order

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

std::size_t PrivateBytes() {
  PROCESS_MEMORY_COUNTERS counters{};
  ::GetProcessMemoryInfo(::GetCurrentProcess(), &counters, sizeof counters);
  return counters.PagefileUsage;
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
