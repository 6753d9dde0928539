// The DLL's life in its host's process: what keeps it there, whom it meets there, what it leaves.

#include "com/variant_conversion.h"
#include "com/windows_api.h"
#include "component/identities.h"
#include "support/component_test.h"

namespace rotacasts {
namespace {

using testing::ComponentTest;
using testing::InstalledPlugin;
using testing::PrivateBytes;
using win32::ComPtr;

class LifetimeTest : public ComponentTest {
 protected:
  /// A host that has done with the plugin, whatever of it is still on the stack; asks whether the
  /// DLL may go.
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
  const auto add = [&] { Call("AddMessageRem", {2, testing::ProfileData(2, "JO"), "<x>"}); };
  const std::pair<const char*, std::function<void()>> entries[] = {
      {"a click's box", [&] { user.insideBox = letGo, testing::ClickMouse(AddButton()); }},
      {"a tick's box", [&] { user.insideBox = letGo, host.failAtCall = 1, tick(); }},
      {"a menu", [&] { user.insideMenu = letGo, RightClickRow(0); }},
      {"a component's loop in a tick", [&] { host.insideCall = letGo, tick(); }},
      {"a component's loop in a call", [&] { host.insideCall = letGo, add(); }}};
  for (const auto& [name, enter] : entries) {
    Show({"a", "b"});
    enter();
    testing::PumpWaiting();
    EXPECT_EQ(std::exchange(mayGo, {}), S_FALSE) << name;
    EXPECT_EQ(installed.CallEntry("DllCanUnloadNow"), S_OK) << name;
    plugin.emplace(InstalledPlugin::Create());
  }
}

TEST_F(LifetimeTest, StartsOnceAlsoWhereAnObjectIsCreatedInsideTheBoxOfItsStart) {
  letGo();
  EXPECT_EQ(mayGo, S_OK);
  siblings.reset();  // nothing to start with, and nothing to log that with
  std::optional<win32::LateBound> second;
  user.insideBox = [&] {
    mayGo = installed.CallEntry("DllCanUnloadNow");
    second.emplace(InstalledPlugin::Create());
  };
  plugin.emplace(InstalledPlugin::Create());
  EXPECT_EQ(mayGo, S_FALSE);
  EXPECT_EQ(user.boxes.size(), 1U);
  second.reset();
  Load(2);
  EXPECT_NE(Form(), nullptr);
}

/// The number of an error that is raised and handled inside a second copy of the DLL in this
/// process, loaded and taken out as COM does.
int ErrorInside(const std::string& copy) {
  const HMODULE module = ::LoadLibraryW(win32::ToWide(copy).c_str());
  int number = 0;
  {
    CLSID id;
    ::CLSIDFromString(win32::kClassIdText, &id);
    ComPtr<IClassFactory> factory;
    ComPtr<IDispatch> object;
    testing::CallEntryOf<const CLSID&, const IID&, void**>(
        module, "DllGetClassObject", id, IID_IClassFactory, factory.ReceiveVoid());
    factory->CreateInstance(nullptr, IID_IDispatch, object.ReceiveVoid());
    const win32::LateBound plugin(object);
    win32::Member disable(plugin, "DisableProfile");
    number = testing::ErrorOf([&] { disable(win32::TextArgument("no number")); });
  }
  EXPECT_EQ(testing::CallEntryOf(module, "DllCanUnloadNow"), S_OK);
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

}  // namespace
}  // namespace rotacasts
