// A fake host: both sibling components, the file system, the clock and the module, in memory.
#pragma once

#include <gtest/gtest.h>

#include <map>
#include <set>
#include <string>
#include <vector>

#include "forms/headless/headless_toolkit.h"
#include "plugin/cls_plugin.h"
#include "siblings/ini_text.h"

namespace rotacasts {
inline namespace testing {

using Texts = std::vector<std::string>;

/// The fakes' contents, and what they were asked.
struct FakeHost {
  /// Every component call in order, with its arguments: "ReadLong(7, 0x00C87598)".
  Texts calls;
  /// The number (from 1) of the call that raises error 57, once; 0 for none.
  int failAtCall = 0;
  bool fired = false;
  /// Runs at the start of every component call, because a component may run a message loop.
  std::function<void()> insideCall;
  /// Runs inside every component call that began, when it has acted or failed.
  std::function<void()> afterCall;
  /// Runs before and after each question to the file-system object, which is not among the calls.
  std::function<void()> insideFileCall;

  std::map<std::int32_t, std::int32_t> longs;  // by address; reading a missing one fails
  std::map<std::int32_t, std::string> texts;
  std::map<std::string, std::string> files = {  // by path
      {"C:\\Host\\settings\\config.ini", "[Settings]\r\nReportErrors=0\r\n"}};
  std::set<std::string> folders;
  LocalTime now{2010, 3, 7, 14, 5, 9};
  std::string moduleFolder = "C:\\Host\\Plugins";
  bool hasUtility = true;
  bool hasMemory = true;
  bool delivers = true;     // the result of SendErrorReport
  bool writesBack = false;  // the memory component changes by-reference arguments

  Texts sent;    // chat texts
  Texts logged;  // "procedure line: number description"
  std::vector<HostValue> reports;
  Texts boxes;  // "title|text"

  std::string& MessageFile(int index);
};

/// The fake host's sibling components. `host` must outlive them.
std::unique_ptr<MemoryComponent> MakeFakeMemory(FakeHost& host);
std::unique_ptr<UtilityComponent> MakeFakeUtility(FakeHost& host);

/// A profile data array: folder "srvN", process handle 100 + N, message target 4000 + N, but with
/// these elements in place of its own.
HostValue Data(std::int32_t index, const std::string& gameCode,
               const std::map<std::size_t, HostValue>& instead = {});

/// A plugin on the fakes, with headless forms.
class PluginHarness {
 public:
  PluginHarness();

  /// Composes the plugin on first use.
  PluginState& State();
  clsPlugin& Plugin();

  void SetProfileData(std::int32_t index, const HostValue& data) {
    State().profiles.SetProfileData(index, rotacasts::ProfileData(data));
  }
  void Load(std::int32_t index, const std::string& gameCode = "JO") {
    Plugin().LoadInterface(index, 77, Data(index, gameCode));
  }
  using RemoteCall = std::string (clsPlugin::*)(std::int32_t, const HostValue&, const HostValue&);
  std::string Remote(RemoteCall call, const HostValue& data, std::int32_t index = 2) {
    return (Plugin().*call)(index, Data(index, "JO"), data);
  }
  void Tick(std::int16_t index) { State().window.Get()->Timers().Tick(index); }
  frmRT& Window() { return *State().window.Get(); }
  /// The rows of the list.
  Texts Rows();
  /// Presses (Click: and releases) a mouse button on a control of the window. x and y in twips.
  void Press(const char* control, std::int16_t button, float x = 0, float y = 0);
  void Click(const char* control, std::int16_t button, float x = 0, float y = 0);
  /// Types a message over the entry box's text and clicks the Add button.
  void AddInWindow(const std::string& text);
  /// Types over the text of a text box, up to its limit.
  static void TypeOver(forms::TextBox& box, const std::string& text);
  /// The texts of the section "Messages" in the profile's file.
  Texts Stored(int index);
  /// Removes and returns the logged errors: "procedure: number".
  Texts TakeErrors();
  /// Removes and returns the boxes shown so far.
  Texts TakeBoxes() { return std::exchange(host.boxes, {}); }

  FakeHost host;
  headless::TimerLoop timers;
  headless::HeadlessToolkit toolkit{timers};

 private:
  struct Fakes;
  std::shared_ptr<Fakes> fakes_;
  std::unique_ptr<PluginState> state_;
  std::unique_ptr<clsPlugin> plugin_;
};

class PluginTest : public ::testing::Test, public PluginHarness {};

/// The lines of a section: "1=a;2=b;".
std::string LinesOf(const host::IniText& ini, std::string_view section);

/// The bytes of a message file with these messages and options; an empty option is left out.
std::string MessageFileBytes(const Texts& messages, const std::string& enable = "1",
                             const std::string& interval = "1");
inline std::string PathOf(int index) {
  return "C:\\Host\\profiles\\srv" + std::to_string(index) + "\\settings\\Rotacasts.ini";
}

/// The run-time error that the statement raises; of number 0 if none.
template <class Statement>
RuntimeError ThrownBy(Statement&& statement) {
  try {
    statement();
    return RuntimeError(0, "");
  } catch (const RuntimeError& error) {
    return error;
  }
}
template <class Statement>
int ErrorOf(Statement&& statement) {
  return ThrownBy(statement).number;
}

}  // namespace testing
}  // namespace rotacasts
