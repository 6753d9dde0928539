// The DLL's life in its host's process: what keeps it loaded, which other libraries it meets, what
// it leaves behind.

#include <algorithm>

#include "com/unique_handle.h"
#include "com/variant_conversion.h"
#include "com/windows_api.h"
#include "component/identities.h"
#include "support/component_test.h"

namespace rotacasts {
namespace {

using win32::ComPtr;

class LifetimeTest : public ComponentTest {
 protected:
  /// Acts as a host that is done with the plugin, even if a call is still on the stack, and asks
  /// whether the DLL can be unloaded.
  const std::function<void()> letGo = [this] {
    host.insideCall = nullptr;
    Call("UnLoadInterface", {""});
    plugin.reset();
    mayGo = installed.CallEntry("DllCanUnloadNow");
  };
  std::optional<HRESULT> mayGo;
};

TEST_F(LifetimeTest, StaysWhileACallOfItsIsOnTheStack) {
  const auto tick = [&] { ::SendMessageW(Form(), WM_TIMER, 2, 0); };
  const auto add = [&] { Call("AddMessageRem", {2, Data(2, "JO"), "<x>"}); };
  const std::pair<const char*, std::function<void()>> entries[] = {
      {"a click's box", [&] { user.insideBox = letGo, ClickMouse(AddButton()); }},
      {"a tick's box", [&] { user.insideBox = letGo, host.failAtCall = 1, tick(); }},
      {"a menu", [&] { user.insideMenu = letGo, RightClickRow(0); }},
      {"a component's loop in a tick", [&] { host.insideCall = letGo, tick(); }},
      {"a component's loop in a call", [&] { host.insideCall = letGo, add(); }}};
  for (const auto& [name, enter] : entries) {
    Show({"a", "b"});
    enter();
    PumpWaiting();
    EXPECT_EQ(std::exchange(mayGo, {}), S_FALSE) << name;
    EXPECT_EQ(installed.CallEntry("DllCanUnloadNow"), S_OK) << name;
    plugin.emplace(InstalledPlugin::Create());
  }
}

DWORD WINAPI Act(void* act) {
  (*static_cast<std::function<void()>*>(act))();
  return 0;
}

TEST_F(LifetimeTest, AWindowWhoseThreadHasEndedIsMadeAgain) {
  Show({"a"});
  Call("UnLoadInterface", {""});
  plugin.reset();
  // Without a parent, whose end would destroy the window in order.
  std::function<void()> showOnTheScreen = [this] {
    ::CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
    const AnsweringUser answers;
    plugin.emplace(InstalledPlugin::Create());
    Call("LoadInterface", {2, 0, Data(2, "JO"), ""});
    plugin.reset();
    EXPECT_EQ(answers.boxes, Texts{});
    ::CoUninitialize();
  };
  const win32::UniqueHandle thread(::CreateThread(nullptr, 0, Act, &showOnTheScreen, 0, nullptr));
  ASSERT_TRUE(PumpUntil([&] { return ::WaitForSingleObject(thread.Get(), 0) == WAIT_OBJECT_0; }));
  plugin.emplace(InstalledPlugin::Create());
  Load(2);
  ASSERT_NE(Form(), nullptr);
  EXPECT_EQ(Rows(), Texts{"a"});
}

TEST_F(LifetimeTest, StartsOnceAlsoWhereAnObjectIsCreatedInsideTheBoxOfItsStart) {
  letGo();
  EXPECT_EQ(mayGo, S_OK);
  siblings.reset();  // no components: start-up fails and cannot log it
  std::optional<win32::LateBound> second;
  user.insideBox = [&] {
    mayGo = installed.CallEntry("DllCanUnloadNow");
    second.emplace(InstalledPlugin::Create());
  };
  plugin.emplace(InstalledPlugin::Create());
  EXPECT_EQ(mayGo, S_FALSE);
  ASSERT_EQ(user.boxes.size(), 1U);
  EXPECT_NE(user.boxes[0].find("Error 429: ActiveX component can't create object: tvxZDL.clsZDF ("),
            std::string::npos)
      << user.boxes[0];
  second.reset();
  Load(2);
  EXPECT_NE(Form(), nullptr);
}

/// The number of an error raised and handled inside a second copy of the DLL in this process, which
/// is loaded and unloaded as COM does it.
int ErrorInside(const std::string& copy) {
  const HMODULE module = ::LoadLibraryW(win32::ToWide(copy).c_str());
  int number = 0;
  {
    CLSID id;
    ::CLSIDFromString(win32::kClassIdText, &id);
    ComPtr<IClassFactory> factory;
    ComPtr<IDispatch> object;
    CallEntryOf<const CLSID&, const IID&, void**>(module, "DllGetClassObject", id,
                                                  IID_IClassFactory, factory.ReceiveVoid());
    factory->CreateInstance(nullptr, IID_IDispatch, object.ReceiveVoid());
    const win32::LateBound plugin(object);
    win32::Member disable(plugin, "DisableProfile");
    number = ErrorOf([&] { disable(win32::TextArgument("no number")); });
  }
  EXPECT_EQ(CallEntryOf(module, "DllCanUnloadNow"), S_OK);
  ::FreeLibrary(module);
  return number;
}

TEST_F(LifetimeTest, HandlesItsErrorsBesideAnotherRuntimeLibraryAndLeavesNothingInTheProcess) {
  constexpr int kLives = 120;
  constexpr int kToWarmUp = 20;
  const std::string copy = installed.File() + ".copy.dll";
  std::filesystem::copy_file(installed.File(), copy);
  const HMODULE anothers = ::LoadLibraryA(ANOTHERS_LIBRARY);
  ASSERT_NE(anothers, nullptr);
  std::size_t before = 0;
  for (int life = 0; life < kLives; ++life) {
    if (life == kToWarmUp) ::FreeLibrary(anothers), before = PrivateBytes();
    EXPECT_EQ(ErrorInside(copy), 13);
  }
  EXPECT_LT(PrivateBytes(), before + (kLives - kToWarmUp) * 256);
}

/// How full the system's handle tables are. Wine does not count a process's objects, but it reuses
/// freed handles before it makes new ones, so leaks make the numbers rise.
struct HandlesInUse {
  DWORD user = 0;
  DWORD drawing = 0;

  void Note(HWND window) {
    const HBRUSH brush = ::CreateSolidBrush(0x123456);
    user = std::max<DWORD>(user, LOWORD(reinterpret_cast<ULONG_PTR>(window)));
    drawing = std::max<DWORD>(drawing, LOWORD(reinterpret_cast<ULONG_PTR>(brush)));
    ::DeleteObject(brush);
  }
};

/// The number of references to a component, without the one used for counting.
ULONG References(const char* progId) {
  const win32::LateBound component = win32::LateBound::Create(progId);
  component.Get()->AddRef();
  return component.Get()->Release() - 1;
}

TEST_F(LifetimeTest, AHundredLivesLeaveNothingBehind) {
  constexpr int kRounds = 100;
  constexpr int kToWarmUp = 60;
  host.MessageFile(2) = MessageFileBytes({"a", "b"});
  HandlesInUse before;
  HandlesInUse after;
  plugin.reset();
  EXPECT_EQ(installed.CallEntry("DllCanUnloadNow"), S_OK);  // which releases the components
  const ULONG references = References(MemoryComponent::kProgId);
  for (int round = 0; round < kRounds; ++round) {
    plugin.emplace(InstalledPlugin::Create());
    Load(2);
    if (round % 20 == 0) user.WillChoose({"Move Down"}), RightClickRow(0);
    (round < kToWarmUp ? before : after).Note(Form());
    if (round % 3 == 0) Call("HideInterface", {});
    Call("UnLoadInterface", {""});
    plugin.reset();
    ASSERT_EQ(installed.CallEntry("DllCanUnloadNow"), S_OK) << "round " << round;
    PumpWaiting();
    host.calls.clear();
    user.menus.clear();
  }
  EXPECT_LE(after.user, before.user) << "windows or menus stay";
  EXPECT_LE(after.drawing, before.drawing) << "fonts, brushes or pictures stay";
  EXPECT_EQ(References(MemoryComponent::kProgId), references);
  EXPECT_EQ(References(UtilityComponent::kProgId), references);
  MSG timer;
  EXPECT_EQ(::PeekMessageW(&timer, nullptr, WM_TIMER, WM_TIMER, PM_REMOVE), FALSE);
}

}  // namespace
}  // namespace rotacasts
