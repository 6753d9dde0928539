// The DLL's life in its host's process: what keeps it there, whom it meets there, what it leaves.

#include <filesystem>

#include "com/variant_conversion.h"
#include "com/windows_api.h"
#include "component/identities.h"
#include "support/component_test.h"

namespace rotacasts {
namespace {

using testing::ComponentTest;
using testing::MessageFileBytes;
using testing::PrivateBytes;
using testing::PumpWaiting;

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
  struct Row {
    const char* entry;
    std::function<void()> enter;
  };
  for (const Row& row : std::initializer_list<Row>{
           {"a click's box", [&] { user.insideBox = letGo, testing::ClickMouse(AddButton()); }},
           {"a tick's box",
            [&] {
              user.insideBox = letGo;
              host.failAtCall = 1;
              ::SendMessageW(Form(), WM_TIMER, 2, 0);
            }},
           {"a menu",
            [&] {
              user.insideMenu = letGo;
              ::SendMessageW(Control("lstMessages"), WM_RBUTTONDOWN, 0, MAKELPARAM(9, 3));
            }},
           {"a component's loop in a tick",
            [&] { host.insideCall = letGo, ::SendMessageW(Form(), WM_TIMER, 2, 0); }},
           {"a component's loop in a call", [&] {
              host.insideCall = letGo;
              Call("AddMessageRem", {2, testing::ProfileData(2, "JO"), "<x>"});
            }}}) {
    host.MessageFile(2) = MessageFileBytes({"a", "b"});
    Load(2);
    row.enter();
    PumpWaiting();
    EXPECT_EQ(std::exchange(mayGo, {}), S_FALSE) << row.entry;
    EXPECT_EQ(installed.CallEntry("DllCanUnloadNow"), S_OK) << row.entry;
    plugin.emplace(testing::InstalledPlugin::Create());
  }
}

TEST_F(LifetimeTest, StartsOnceAlsoWhereAnObjectIsCreatedInsideTheBoxOfItsStart) {
  letGo();
  EXPECT_EQ(mayGo, S_OK);
  siblings.reset();  // nothing to start with, and nothing to log that with
  std::optional<win32::LateBound> second;
  user.insideBox = [&] {
    mayGo = installed.CallEntry("DllCanUnloadNow");
    second.emplace(testing::InstalledPlugin::Create());
  };
  plugin.emplace(testing::InstalledPlugin::Create());
  EXPECT_EQ(mayGo, S_FALSE);
  EXPECT_EQ(user.boxes.size(), 1U);
  second.reset();
  Load(2);
  EXPECT_NE(Form(), nullptr);
}

/// A second copy of the DLL in this process, loaded and taken out as COM does.
class LoadedCopy {
 public:
  explicit LoadedCopy(const testing::InstalledPlugin& installed)
      : file_(installed.HostFolder() + "\\Plugins\\copy.dll") {
    if (!std::filesystem::exists(file_)) std::filesystem::copy_file(installed.File(), file_);
    module_ = ::LoadLibraryW(win32::ToWide(file_).c_str());
  }
  ~LoadedCopy() {
    EXPECT_EQ(testing::CallEntryOf(module_, "DllCanUnloadNow"), S_OK);
    ::FreeLibrary(module_);
  }
  win32::LateBound Create() const {
    CLSID id;
    ::CLSIDFromString(win32::kClassIdText, &id);
    win32::ComPtr<IClassFactory> factory;
    win32::ComPtr<IDispatch> object;
    testing::CallEntryOf<const CLSID&, const IID&, void**>(
        module_, "DllGetClassObject", id, IID_IClassFactory, factory.ReceiveVoid());
    factory->CreateInstance(nullptr, IID_IDispatch, object.ReceiveVoid());
    return win32::LateBound(object);
  }

 private:
  const std::string file_;
  HMODULE module_;
};

/// The number of an error that is raised and handled inside the DLL.
int ErrorInside(const win32::LateBound& plugin) {
  return testing::ErrorOf(
      [&] { win32::Member(plugin, "DisableProfile")(win32::TextArgument("no number")); });
}

TEST_F(LifetimeTest, HandlesItsErrorsBesideAnotherComponentsRuntimeLibrary) {
  const HMODULE library = ::LoadLibraryA(ANOTHERS_LIBRARY);
  ASSERT_NE(library, nullptr);
  EXPECT_EQ(ErrorInside(LoadedCopy(installed).Create()), 13);
  ::FreeLibrary(library);
}

TEST_F(LifetimeTest, LeavesNothingInTheProcessThatItIsTakenOutOf) {
  constexpr int kLives = 120;
  constexpr int kToWarmUp = 20;
  std::size_t before = 0;
  for (int life = 0; life < kLives; ++life) {
    if (life == kToWarmUp) before = PrivateBytes();
    EXPECT_EQ(ErrorInside(LoadedCopy(installed).Create()), 13);
  }
  EXPECT_LT(PrivateBytes(), before + (kLives - kToWarmUp) * 256);
}

}  // namespace
}  // namespace rotacasts
