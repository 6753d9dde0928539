// A host process for the DLL: fakes for the sibling components, a frame window, a person at the
// screen.
#pragma once

#include <gtest/gtest.h>

#include "siblings/win32/sibling_objects.h"
#include "support/fake_host.h"
#include "support/installed_plugin.h"
#include "support/user.h"

namespace rotacasts::testing {

/// The host's own window, which the settings window is put into.
class Frame {
 public:
  Frame();
  ~Frame() { ::DestroyWindow(window_); }
  Frame(const Frame&) = delete;
  Frame& operator=(const Frame&) = delete;
  HWND Get() const { return window_; }

 private:
  HWND window_;
};

/// A VARIANT that refers to what is there.
inline VARIANT ReferenceTo(VARTYPE kind, void* target) {
  VARIANT value;
  ::VariantInit(&value);
  value.vt = static_cast<VARTYPE>(VT_BYREF | kind);
  value.byref = target;
  return value;
}

/// What this process has taken of the system's memory for itself.
std::size_t PrivateBytes();

/// Each test begins with a plugin of no state, and ends by asserting that nothing holds the DLL.
class ComponentTest : public ::testing::Test {
 protected:
  ~ComponentTest() override;

  /// Calls a member by its name; what it raises is raised here.
  HostValue Call(const char* member, std::vector<HostValue> arguments) const;
  void Load(std::int32_t index, const std::string& gameCode = "JO") const;

  /// Shows profile 2 with these messages.
  void Show(const std::vector<std::string>& messages);

  /// The settings window; null while it is not in the frame.
  HWND Form() const;
  /// The window of a control of the layout; null, and a failure, when there is none.
  HWND Control(std::string_view name) const;
  HWND AddButton() const;
  std::string TextOf(std::string_view control) const;
  std::vector<std::string> Rows() const;
  /// Clicks a row of the list with the right button.
  void RightClickRow(int row) const;

  InstalledPlugin& installed = Installed();
  FakeHost host;
  const std::unique_ptr<MemoryComponent> memory = MakeFakeMemory(host);
  const std::unique_ptr<UtilityComponent> utility = MakeFakeUtility(host);
  std::optional<host::SiblingRegistration> siblings{std::in_place, *memory, *utility};
  AnsweringUser user;
  std::optional<Frame> frame{std::in_place};
  std::optional<win32::LateBound> plugin{InstalledPlugin::Create()};
};

}  // namespace rotacasts::testing
