// The DLL's life in its host's process: what keeps it there, whom it meets there, what it leaves.

#include <filesystem>

#include "com/variant_conversion.h"
#include "com/windows_api.h"
#include "component/identities.h"
#include "support/component_test.h"

#include <psapi.h>  // needs the types of the system's main header

namespace rotacasts {
namespace {

using testing::ComponentTest;
using testing::MessageFileBytes;
using testing::PumpWaiting;

SIZE_T PrivateBytes() {
  PROCESS_MEMORY_COUNTERS counters{};
  ::GetProcessMemoryInfo(::GetCurrentProcess(), &counters, sizeof counters);
  return counters.PagefileUsage;
}

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

}  // namespace
}  // namespace rotacasts
