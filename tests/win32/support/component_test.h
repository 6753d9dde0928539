// A host process for the DLL: fakes for the sibling components, a frame window, a simulated user.
#pragma once

#include <gtest/gtest.h>

#include "siblings/win32/sibling_objects.h"
#include "support/fake_host.h"
#include "support/installed_plugin.h"
#include "support/user.h"

namespace rotacasts {
inline namespace testing {

/// The host's window, which the settings window is put into.
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

/// A VARIANT that refers to `target`.
inline VARIANT ReferenceTo(VARTYPE kind, void* target) {
  VARIANT value;
  ::VariantInit(&value);
  value.vt = static_cast<VARTYPE>(VT_BYREF | kind);
  value.byref = target;
  return value;
}

/// The private memory of this process, in bytes.
std::size_t PrivateBytes();

/// Each test starts with a new plugin and ends with a check that nothing holds the DLL.
class ComponentTest : public ::testing::Test {
 protected:
  ~ComponentTest() override;

  /// Calls a member by name. Errors: those of the member.
  HostValue Call(const char* member, std::vector<HostValue> arguments) const;
  void Load(std::int32_t index, const std::string& gameCode = "JO") const;

  /// Shows profile 2 with these messages.
  void Show(const Texts& messages);

  /// The settings window; null if it is not in the frame.
  HWND Form() const;
  /// The window of a control in the layout; null, and a test failure, if there is none.
  HWND Control(std::string_view name) const;
  HWND AddButton() const;
  std::string TextOf(std::string_view control) const;
  Texts Rows() const;
  /// Right-clicks a row of the list.
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

}  // namespace testing
}  // namespace rotacasts
