// No message is ever lost: every call of every change made to fail, and long random lives of a
// list.

#include <algorithm>
#include <random>

#include "host/components/ini_text.h"
#include "support/fake_host.h"

namespace rotacasts {
namespace {

using forms::MouseEvent;
using testing::FakeHost;
using testing::MessageFileBytes;
using testing::PluginHarness;
using Texts = std::vector<std::string>;

const std::string kLong = "b" + std::string(70, 'b');
const Texts kBefore = {"a", kLong, "c", "d"};
const std::string kOptionsBefore = "1, 1";

/// A plugin that shows profile 2 with these messages; nothing was logged yet.
class Scene : public PluginHarness {
 public:
  Scene() {
    host.folders = {"C:\\Host"};
    host.MessageFile(2) = MessageFileBytes(kBefore);
    Load(2);
    Window().lstMessages().Select(1);
    host.calls.clear();
  }
  std::string ClickMenu(const char* item) {
    Window().Menu(item).UserClicked();
    return "";
  }
  std::string Options() {
    return State().store.Open(2).ReadOption(kEnableKey) + ", " +
           State().store.Open(2).ReadOption(kIntervalKey);
  }
};

bool Contains(const Texts& texts, const std::string& text) {
  return std::ranges::count(texts, text) > 0;
}

bool ContainsAll(const Texts& texts, const Texts& wanted) {
  return std::ranges::all_of(wanted, [&](const auto& text) { return Contains(texts, text); });
}

/// What the file may hold after a failure: what it held before; that or what was to become of it;
/// or, as long as a delete is under way, at least the texts that are to stay.
enum class Leaves { AsItWas, AllOrNothing, WhatStays };

/// One changing operation, what it does untouched, and what must hold after each way it can fail.
struct Operation {
  /// Under which names a failure may be logged, the operation's own first. One that is not logged
  /// is told to the administrator in `notice`, or to the caller with the reply "0".
  Texts procedures;
  std::function<std::string(Scene&)> run;  // answers the reply; a change in the window has none
  Leaves leaves = Leaves::AsItWas;
  // After the untouched run:
  Texts after = kBefore;
  std::string reply = "";
  std::string options = kOptionsBefore;
  Texts boxes = {};

  std::string notice = "";
  /// The call whose failure the caller never learns of: the reply says that the command was carried
  /// out, and the next listing what it came to.
  std::string silentCall = "-";
};

const Texts kWithNew = {"a", kLong, "c", "d", "new"};
const Texts kUp = {kLong, "a", "c", "d"};
const Texts kDown = {"a", "c", kLong, "d"};
const Texts kDeleted = {"a", "c", "d"};

std::string WindowAdd(Scene& scene) {
  scene.TypeOver(scene.Window().txtMessage(), "new");
  scene.Click("cmdAdd", MouseEvent::kLeft);
  return "";
}
std::string WindowSwitch(Scene& scene) {
  scene.Window().chkAuto().UserClicked();
  return "";
}
std::string WindowInterval(Scene& scene) {
  scene.TypeOver(scene.Window().txtInterval(), "9");
  return "";
}
auto Menu(const char* item) {
  return [item](Scene& scene) { return scene.ClickMenu(item); };
}
auto Remote(PluginHarness::RemoteCall call, const Variant& data) {
  return [call, data](Scene& scene) { return scene.Remote(call, data); };
}

// clang-format off
const Operation kOperations[] = {
    {{"cmdAdd_MouseUp", "LoadMessages"}, WindowAdd, Leaves::AllOrNothing, kWithNew, "",
     kOptionsBefore, {"Success|Message added successfully!"}, "Failed!|Could not add message!"},
    {{"mnuUp"}, Menu("mnuUp"), Leaves::AsItWas, kUp},
    {{"mnuDown"}, Menu("mnuDown"), Leaves::AsItWas, kDown},
    {{"mnuDelete_Click", "RewriteEntries", "LoadMessages"}, Menu("mnuDelete"), Leaves::WhatStays,
     kDeleted, "", kOptionsBefore, {}, "Failed!|Could not delete message!"},
    {{"chkAuto_Click"}, WindowSwitch, Leaves::AsItWas, kBefore, "", "0, 1"},
    {{"txtInterval_Change"}, WindowInterval, Leaves::AsItWas, kBefore, "", "1, 9"},
    {{"AddMessageRem", "LoadMessages"}, Remote(&clsPlugin::AddMessageRem, "<new>"),
     Leaves::AllOrNothing, kWithNew, "1"},
    {{"DeleteMessageRem", "RewriteEntries", "LoadMessages"},
     Remote(&clsPlugin::DeleteMessageRem, 1), Leaves::WhatStays, kDeleted, "1", kOptionsBefore, {},
     "", "WriteIniKey(Messages, 2, null"},
    {{"MoveMessageUpRem"}, Remote(&clsPlugin::MoveMessageUpRem, 2), Leaves::AllOrNothing, kDown,
     "1"},
    {{"MoveMessageDownRem"}, Remote(&clsPlugin::MoveMessageDownRem, 1), Leaves::AllOrNothing, kDown,
     "1"},
    {{"EnableRTRem", "chkAuto_Click"}, Remote(&clsPlugin::EnableRTRem, "0"), Leaves::AsItWas,
     kBefore, "", "0, 1"},
    {{"ChangeIntervalRem", "txtInterval_Change"}, Remote(&clsPlugin::ChangeIntervalRem, "8"),
     Leaves::AsItWas, kBefore, "", "1, 8"},
};
// clang-format on

/// How the run in which this call failed came to anyone's notice; empty if it did not.
std::string Notice(const Operation& operation, const FakeHost& host, const std::string& reply,
                   const std::string& failed) {
  if (!host.logged.empty()) return host.logged[0].substr(0, host.logged[0].find(" injected"));
  if (Contains(host.boxes, operation.notice)) return "notice";
  if (!operation.reply.empty() && reply == "0") return "reply";
  return failed.find(operation.silentCall) == 0 ? "silent" : "";
}

/// After a failed run the failure came to someone's notice, under the right name, the reply claims
/// no more than was done, and the file holds what it must.
void CheckFailure(const Operation& operation, Scene& scene, const std::string& reply, int call) {
  const std::string failed = scene.host.calls[static_cast<std::size_t>(call) - 1];
  SCOPED_TRACE(operation.procedures[0] + ", call " + std::to_string(call) + ": " + failed);
  const std::string notice = Notice(operation, scene.host, reply, failed);
  const std::string procedure = notice.substr(0, notice.find(": 57"));
  EXPECT_TRUE(notice == "notice" || notice == "reply" || notice == "silent" ||
              (procedure != notice && Contains(operation.procedures, procedure)))
      << "noticed as \"" << notice << "\"";
  EXPECT_LE(scene.host.logged.size(), 1U);
  const Texts stored = scene.Stored(2);
  EXPECT_TRUE(stored == kBefore ||
              (operation.leaves == Leaves::AllOrNothing && stored == operation.after) ||
              (operation.leaves == Leaves::WhatStays && ContainsAll(stored, operation.after)))
      << scene.host.MessageFile(2);
  // The operation's own error ends it with the reply as it stood: set once only the log is left.
  const bool inLog = failed.find("Create") == 0 || failed.find("AppendFile") == 0;
  const bool ended = procedure == operation.procedures[0] && !inLog;
  EXPECT_EQ(reply, ended ? "" : notice == "reply" ? "0" : operation.reply);
  if (reply == "1" && procedure != "RewriteEntries" && notice != "silent") {
    EXPECT_EQ(stored, operation.after);
  }
  EXPECT_EQ(scene.Options(), call == 1 ? kOptionsBefore : operation.options);
}

/// Fails component call number 1, 2, 3, ... of each operation, until a run completes untouched.
TEST(NoMessageIsLost, WhicheverCallOfAnyChangeFails) {
  for (const Operation& operation : kOperations) {
    for (int call = 1, fired = true; fired; ++call) {
      Scene scene;
      scene.host.failAtCall = call;
      const std::string reply = operation.run(scene);
      fired = scene.host.fired;
      scene.host.failAtCall = 0;
      if (fired) {
        CheckFailure(operation, scene, reply, call);
        continue;
      }
      SCOPED_TRACE(operation.procedures[0]);
      EXPECT_GT(call, 1);
      EXPECT_EQ(reply, operation.reply);
      EXPECT_EQ(scene.Stored(2), operation.after);
      EXPECT_EQ(scene.Options(), operation.options);
      EXPECT_EQ(scene.host.logged, Texts{});
      EXPECT_EQ(scene.host.boxes, operation.boxes);
    }
  }
}

TEST(NoMessageIsLost, WhenEveryCallFromSomeOneOnFails) {
  for (const char* item : {"mnuUp", "mnuDown"}) {
    for (int last = 0; last < 20; ++last) {
      Scene scene;
      int calls = 0;
      scene.host.insideCall = [&] {
        if (++calls > last) throw RuntimeError(ErrorNumber::DeviceIoError, "the disk is gone");
      };
      scene.ClickMenu(item);
      scene.host.insideCall = nullptr;
      EXPECT_TRUE(ContainsAll(scene.Stored(2), kBefore)) << item << " after " << last << " calls:\n"
                                                         << scene.host.MessageFile(2);
    }
  }
}

/// The list of one profile, as simply as it can be said. Texts are unlike one another, so that a
/// row and its message find each other by text.
struct Model {
  Texts file;
  Texts rows;  // what the window shows of it; the file's own texts, uncut
  std::string interval = "3";
  std::string enabled = "1";
  void Remove(const std::string& text) {
    std::erase(file, text);
    std::erase(file, "");  // renumbering drops them
  }
};

class RandomLife : public PluginHarness {
 public:
  explicit RandomLife(unsigned seed) : random_(seed) {
    host.folders = {"C:\\Host", "C:\\Host\\adminlogs"};
    Load(1);
    Load(2);  // the window shows profile 2
  }

  void Step() {
    using Life = RandomLife;
    static constexpr void (Life::*kActs[])(int) = {
        &Life::RemoteAdd,      &Life::RemoteAdd,    &Life::RemoteMove,   &Life::RemoteMove,
        &Life::RemoteDelete,   &Life::RemoteOption, &Life::WindowAdd,    &Life::WindowAdd,
        &Life::WindowMove,     &Life::WindowMove,   &Life::WindowDelete, &Life::WindowSwitch,
        &Life::WindowInterval, &Life::RemoteOption};
    (this->*kActs[Below(std::size(kActs))])(1 + static_cast<int>(Below(2)));
  }

  void Compare() {
    for (const int profile : {1, 2}) {
      const Model& model = models_[profile];
      ASSERT_EQ(Stored(profile), model.file) << "profile " << profile;
      ASSERT_EQ(State().store.Open(profile).ReadOption("Interval"), model.interval);
      ASSERT_EQ(State().store.Open(profile).ReadOption("Enable"), model.enabled);
    }
    ASSERT_EQ(Window().txtInterval().Text(), shown_.interval);
    ASSERT_EQ(std::to_string(Window().chkAuto().Value()), shown_.enabled);
    Texts rows = shown_.rows;
    for (std::string& text : rows) text = text.substr(0, 60);
    ASSERT_EQ(Rows(), rows);
    ASSERT_EQ(host.files["C:\\Host\\adminlogs\\2010-03-07.txt"], log_);
    ASSERT_TRUE(host.logged.empty()) << host.logged[0];
  }

 private:
  std::size_t Below(std::size_t limit) { return random_() % limit; }
  std::string NewText() {
    return Below(6) == 0 ? "" : std::to_string(++texts_) + std::string(Below(90), '=');
  }
  void Log(const std::string& action, const std::string& value) {
    log_ += "[14:05:09][Rotacasts] " + action + value + ") from admin\r\n";
  }
  void RefillIfShown(int profile) {
    if (profile == 2) shown_.rows = shown_.file;
  }

  void RemoteAdd(int profile) {
    const std::string text = NewText();
    EXPECT_EQ(Remote(&clsPlugin::AddMessageRem, "<" + text + ">", profile), "1");
    models_[profile].file.push_back(text);
    RefillIfShown(profile);
    Log("Add Rotacast (Message: ", text);
  }
  void RemoteMove(int profile) {
    Texts& file = models_[profile].file;
    const bool up = Below(2) == 0;
    const int position = static_cast<int>(Below(file.size() + 2)) - 1;
    const int other = position + (up ? -1 : 1);
    const bool moves =
        std::min(position, other) >= 0 && std::max(position, other) < std::ssize(file);
    const auto call = up ? &clsPlugin::MoveMessageUpRem : &clsPlugin::MoveMessageDownRem;
    EXPECT_EQ(Remote(call, position, profile), moves ? "1" : "0");
    if (!moves) return;
    Log(up ? "Move Rotacasts Up (Message: " : "Move Rotacasts Down (Message: ",
        file[static_cast<std::size_t>(position)]);
    std::swap(file[static_cast<std::size_t>(position)], file[static_cast<std::size_t>(other)]);
  }
  void RemoteDelete(int profile) {
    Model& model = models_[profile];
    const std::size_t position = Below(model.file.size() + 1);
    const std::string text = position < model.file.size() ? model.file[position] : "";
    EXPECT_EQ(Remote(&clsPlugin::DeleteMessageRem, std::to_string(position), profile), "1");
    model.Remove(text);
    RefillIfShown(profile);
    Log("Delete Rotacasts (Message: ", text);
  }
  void RemoteOption(int profile) {
    Model& model = models_[profile];
    model.interval = std::to_string(Below(31));
    EXPECT_EQ(Remote(&clsPlugin::ChangeIntervalRem, model.interval, profile), "");
    Log("Change Rotacasts Interval (New Interval: ", model.interval);
    model.enabled = std::to_string(Below(3));  // 2 is the greyed box
    EXPECT_EQ(Remote(&clsPlugin::EnableRTRem, model.enabled, profile), "");
    Log("Enable Rotacasts (New Value: ", model.enabled);
  }
  void WindowSwitch(int) {
    Window().chkAuto().UserClicked();
    shown_.enabled = shown_.enabled == "0" ? "1" : "0";
  }
  void WindowInterval(int) {
    const std::string typed = Below(4) == 0 ? "x" : std::to_string(Below(100));
    TypeOver(Window().txtInterval(), typed);
    if (typed != "x") shown_.interval = typed;  // which otherwise snaps back
  }
  void WindowAdd(int) {
    const std::string text = NewText().substr(0, 60);
    TypeOver(Window().txtMessage(), text);
    Click("cmdAdd", MouseEvent::kLeft);
    if (text.empty()) return;
    shown_.file.push_back(text);
    shown_.rows = shown_.file;
  }
  void WindowMove(int) {
    if (shown_.rows.size() < 2) return;
    const std::size_t upper = Below(shown_.rows.size() - 1);
    const bool up = Below(2) == 0;
    Window().lstMessages().Select(static_cast<std::int32_t>(up ? upper + 1 : upper));
    Press("lstMessages", MouseEvent::kLeft);
    Window().Menu(up ? "mnuUp" : "mnuDown").UserClicked();
    std::swap(shown_.rows[upper], shown_.rows[upper + 1]);
    shown_.file = shown_.rows;  // the list's order is the new order
  }
  void WindowDelete(int) {
    if (shown_.rows.empty()) return;
    const std::size_t row = Below(shown_.rows.size());
    Window().lstMessages().Select(static_cast<std::int32_t>(row));
    Window().Menu("mnuDelete").UserClicked();
    shown_.Remove(shown_.rows[row]);
    shown_.rows = shown_.file;
  }

  std::mt19937 random_;
  std::map<int, Model> models_;
  Model& shown_ = models_[2];
  std::string log_;
  int texts_ = 0;
};

TEST(NoMessageIsLost, InLongRandomLivesOfTwoLists) {
  for (unsigned seed = 1; seed <= 20; ++seed) {
    RandomLife life(seed);
    for (int step = 0; step < 250; ++step) {
      life.Step();
      ASSERT_NO_FATAL_FAILURE(life.Compare()) << "seed " << seed << ", step " << step;
    }
  }
}

}  // namespace
}  // namespace rotacasts
