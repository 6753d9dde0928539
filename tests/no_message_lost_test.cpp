// No message is ever lost: every call of every change made to fail, and long random lives of a
// list.

#include <algorithm>
#include <random>

#include "host/ini_text.h"
#include "support/fake_host.h"

namespace rotacasts {
namespace {

using forms::MouseEvent;
using testing::FakeHost;
using testing::MessageFileBytes;
using testing::PluginHarness;
using Texts = std::vector<std::string>;

/// A plugin that shows profile 2 with the messages a to d, one of them long; nothing was logged
/// yet.
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
  template <class Data>
  std::string Remote(std::string (clsPlugin::*operation)(std::int32_t, const Variant&,
                                                         const Variant&),
                     Data data) {
    return (Plugin().*operation)(2, this->PluginHarness::Data(2, "JO"), data);
  }
  std::string Options() {
    return State().store.ReadOption(2, kEnableKey) + ", " +
           State().store.ReadOption(2, kIntervalKey);
  }

  static inline const std::string kLong = "b" + std::string(70, 'b');
  static inline const Texts kBefore = {"a", kLong, "c", "d"};
  static constexpr const char* kOptionsBefore = "1, 1";
};

bool Contains(const Texts& texts, const std::string& text) {
  return std::find(texts.begin(), texts.end(), text) != texts.end();
}

/// Every text is there, some perhaps twice.
bool HoldsAll(const Texts& after) {
  return std::all_of(Scene::kBefore.begin(), Scene::kBefore.end(),
                     [&](const std::string& text) { return Contains(after, text); });
}

bool IsUntouched(const Texts& after) {
  return after == Scene::kBefore;
}

/// What was there, and perhaps the new text behind it.
bool HoldsAllAndAnAdd(const Texts& after) {
  Texts added = Scene::kBefore;
  added.emplace_back("new");
  return IsUntouched(after) || after == added;
}

/// Deleting the second of four: what is to stay is there, some perhaps twice.
bool IsADeleteUnderWay(const Texts& after) {
  return Contains(after, "a") && Contains(after, "c") && Contains(after, "d");
}

/// An exchange is whole or has not been.
bool IsAnExchange(const Texts& after) {
  Texts exchanged = Scene::kBefore;
  std::swap(exchanged[1], exchanged[2]);
  return IsUntouched(after) || after == exchanged;
}

/// One changing operation, what it does untouched, and what must hold after each way it can fail.
struct Operation {
  const char* name;
  std::function<std::string(Scene&)> run;  // answers the reply; a change in the window has none
  /// Under which names a failure may be logged, the operation's own first. One that is not logged
  /// is told to the administrator in `notice`, or to the caller with the reply "0".
  Texts procedures;
  const char* notice = nullptr;
  /// The call whose failure the caller never learns of: the reply says that the command was carried
  /// out, and the next listing what it came to.
  const char* silentCall = nullptr;
  /// Which texts the file may hold after a failure.
  std::function<bool(const Texts& after)> holds = IsUntouched;
  // After the untouched run:
  const char* reply = "";
  Texts after = Scene::kBefore;
  const char* options = Scene::kOptionsBefore;
  Texts boxes = {};
};

const Texts kWithNew = {"a", Scene::kLong, "c", "d", "new"};
const Texts kUp = {Scene::kLong, "a", "c", "d"};
const Texts kDown = {"a", "c", Scene::kLong, "d"};
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

const Operation kOperations[] = {
    {.name = "window add",
     .run = WindowAdd,
     .procedures = {"cmdAdd_MouseUp", "LoadMessages"},
     .notice = "Failed!|Could not add message!",
     .holds = HoldsAllAndAnAdd,
     .after = kWithNew,
     .boxes = {"Success|Message added successfully!"}},
    {.name = "window move up",
     .run = [](Scene& scene) { return scene.ClickMenu("mnuUp"); },
     .procedures = {"mnuUp"},
     .after = kUp},
    {.name = "window move down",
     .run = [](Scene& scene) { return scene.ClickMenu("mnuDown"); },
     .procedures = {"mnuDown"},
     .after = kDown},
    {.name = "window delete",
     .run = [](Scene& scene) { return scene.ClickMenu("mnuDelete"); },
     .procedures = {"mnuDelete_Click", "RewriteEntries", "LoadMessages"},
     .notice = "Failed!|Could not delete message!",
     .holds = IsADeleteUnderWay,
     .after = kDeleted},
    {.name = "window switch",
     .run = WindowSwitch,
     .procedures = {"chkAuto_Click"},
     .options = "0, 1"},
    {.name = "window interval",
     .run = WindowInterval,
     .procedures = {"txtInterval_Change"},
     .options = "1, 9"},
    {.name = "remote add",
     .run = [](Scene& scene) { return scene.Remote(&clsPlugin::AddMessageRem, "<new>"); },
     .procedures = {"AddMessageRem", "LoadMessages"},
     .holds = HoldsAllAndAnAdd,
     .reply = "1",
     .after = kWithNew},
    {.name = "remote delete",
     .run = [](Scene& scene) { return scene.Remote(&clsPlugin::DeleteMessageRem, 1); },
     .procedures = {"DeleteMessageRem", "RewriteEntries", "LoadMessages"},
     .silentCall = "WriteIniKey(Messages, 2, null",
     .holds = IsADeleteUnderWay,
     .reply = "1",
     .after = kDeleted},
    {.name = "remote up",
     .run = [](Scene& scene) { return scene.Remote(&clsPlugin::MoveMessageUpRem, 2); },
     .procedures = {"MoveMessageUpRem"},
     .holds = IsAnExchange,
     .reply = "1",
     .after = kDown},
    {.name = "remote down",
     .run = [](Scene& scene) { return scene.Remote(&clsPlugin::MoveMessageDownRem, 1); },
     .procedures = {"MoveMessageDownRem"},
     .holds = IsAnExchange,
     .reply = "1",
     .after = kDown},
    {.name = "remote switch",
     .run = [](Scene& scene) { return scene.Remote(&clsPlugin::EnableRTRem, "0"); },
     .procedures = {"EnableRTRem", "chkAuto_Click"},
     .options = "0, 1"},
    {.name = "remote interval",
     .run = [](Scene& scene) { return scene.Remote(&clsPlugin::ChangeIntervalRem, "8"); },
     .procedures = {"ChangeIntervalRem", "txtInterval_Change"},
     .options = "1, 8"},
};

/// How the run in which this call failed came to anyone's notice; empty if it did not.
std::string Notice(const Operation& operation, const FakeHost& host, const std::string& reply,
                   const std::string& failed) {
  if (!host.logged.empty()) return host.logged[0].substr(0, host.logged[0].find(" injected"));
  if (operation.notice != nullptr && Contains(host.boxes, operation.notice)) return "notice";
  if (*operation.reply != 0 && reply == "0") return "reply";
  const bool silent = operation.silentCall != nullptr && failed.find(operation.silentCall) == 0;
  return silent ? "silent" : "";
}

/// After a failed run the failure came to someone's notice, under the right name, the reply claims
/// no more than was done, and the file holds what it must.
void CheckFailure(const Operation& operation, Scene& scene, const std::string& reply, int call) {
  const std::string failed = scene.host.calls[static_cast<std::size_t>(call) - 1];
  SCOPED_TRACE(std::string(operation.name) + ", call " + std::to_string(call) + ": " + failed);
  const std::string notice = Notice(operation, scene.host, reply, failed);
  const std::string procedure = notice.substr(0, notice.find(": 57"));
  EXPECT_TRUE(notice == "notice" || notice == "reply" || notice == "silent" ||
              (procedure != notice && Contains(operation.procedures, procedure)))
      << "noticed as \"" << notice << "\"";
  EXPECT_LE(scene.host.logged.size(), 1U);
  const Texts stored = scene.Stored(2);
  EXPECT_TRUE(operation.holds(stored)) << scene.host.MessageFile(2);
  // The operation's own error ends it with the reply as it stood: set once only the log is left.
  const bool inLog = failed.find("Create") == 0 || failed.find("AppendFile") == 0;
  const bool ended = procedure == operation.procedures[0] && !inLog;
  EXPECT_EQ(reply, ended ? "" : notice == "reply" ? "0" : operation.reply);
  if (reply == "1" && procedure != "RewriteEntries" && notice != "silent") {
    EXPECT_EQ(stored, operation.after);
  }
  EXPECT_EQ(scene.Options(), call == 1 ? Scene::kOptionsBefore : operation.options);
}

/// Fails component call number 1, 2, 3, ... of the operation, until a run completes untouched.
/// Answers how many calls there were to fail.
int FailEveryCall(const Operation& operation) {
  for (int call = 1;; ++call) {
    Scene scene;
    scene.host.failAtCall = call;
    const std::string reply = operation.run(scene);
    const bool fired = scene.host.fired;
    scene.host.failAtCall = 0;
    if (fired) {
      CheckFailure(operation, scene, reply, call);
      continue;
    }
    EXPECT_EQ(reply, operation.reply) << operation.name;
    EXPECT_EQ(scene.Stored(2), operation.after) << operation.name;
    EXPECT_EQ(scene.Options(), operation.options) << operation.name;
    EXPECT_EQ(scene.host.logged, Texts{}) << operation.name;
    EXPECT_EQ(scene.host.boxes, operation.boxes) << operation.name;
    return call - 1;
  }
}

TEST(NoMessageIsLost, WhicheverCallOfAnyChangeFails) {
  for (const Operation& operation : kOperations) {
    const int calls = FailEveryCall(operation);
    EXPECT_GE(calls, 1) << operation.name;
    ::testing::Test::RecordProperty(operation.name, calls);
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
      EXPECT_TRUE(HoldsAll(scene.Stored(2))) << item << " after " << last << " calls:\n"
                                             << scene.host.MessageFile(2);
    }
  }
}

/// The list of one profile, as simply as it can be said. Texts are unlike one another, so that a
/// row and its message find each other by text.
struct Model {
  Texts file;
  Texts rows;  // what the window shows of it; the file's own texts, uncut
  void Refill() { rows = file; }
  void Remove(const std::string& text) {
    file.erase(std::remove(file.begin(), file.end(), text), file.end());
    file.erase(std::remove(file.begin(), file.end(), ""), file.end());  // renumbering drops them
  }
};

Texts Cut(const Texts& texts) {
  Texts cut;
  for (const std::string& text : texts) cut.push_back(text.substr(0, 60));
  return cut;
}

class RandomLife : public PluginHarness {
 public:
  explicit RandomLife(unsigned seed) : random_(seed) {
    host.folders = {"C:\\Host", "C:\\Host\\adminlogs"};
    Load(1);
    Load(2);  // the window shows profile 2
  }

  void Step() {
    const int profile = 1 + Below(2);
    Model& model = models_[profile];
    switch (Below(14)) {
      case 0:
      case 1:
        return RemoteAdd(profile, model);
      case 2:
        return RemoteMove(profile, model, true);
      case 3:
        return RemoteMove(profile, model, false);
      case 4:
        return RemoteDelete(profile, model);
      case 5:
        return RemoteInterval(profile);
      case 6:
        return RemoteSwitch(profile);
      case 7:
      case 8:
        return WindowAdd();
      case 9:
        return WindowMove(true);
      case 10:
        return WindowMove(false);
      case 11:
        return WindowSwitch();
      case 12:
        return WindowInterval();
      default:
        return WindowDelete();
    }
  }

  void Compare(int step) {
    for (const int profile : {1, 2}) {
      ASSERT_EQ(Stored(profile), models_[profile].file)
          << "profile " << profile << ", step " << step;
      ASSERT_EQ(State().store.ReadOption(profile, "Interval"), intervals_[profile]) << step;
      ASSERT_EQ(State().store.ReadOption(profile, "Enable"), switches_[profile]) << step;
    }
    ASSERT_EQ(Window().txtInterval().Text(), intervals_[2]) << step;
    ASSERT_EQ(std::to_string(Window().chkAuto().Value()), switches_[2]) << step;
    ASSERT_EQ(Rows(), Cut(models_[2].rows)) << step;
    ASSERT_EQ(host.files["C:\\Host\\adminlogs\\2010-03-07.txt"], log_) << step;
    ASSERT_TRUE(host.logged.empty()) << host.logged[0];
  }

 private:
  int Below(int limit) { return static_cast<int>(random_() % static_cast<unsigned>(limit)); }
  std::string NewText() {
    const std::string number = std::to_string(++texts_);
    return Below(6) == 0 ? "" : number + std::string(static_cast<std::size_t>(Below(90)), '=');
  }
  void Log(const std::string& action, const std::string& value) {
    log_ += "[14:05:09][Rotacasts] " + action + value + ") from admin\r\n";
  }
  void ExpectReply(const std::string& reply, const char* expected) { EXPECT_EQ(reply, expected); }
  void RefillIfShown(int profile) {
    if (profile == 2) models_[2].Refill();
  }

  void RemoteAdd(int profile, Model& model) {
    const std::string text = NewText();
    ExpectReply(Plugin().AddMessageRem(profile, Data(profile, "JO"), "<" + text + ">"), "1");
    model.file.push_back(text);
    RefillIfShown(profile);
    Log("Add Rotacast (Message: ", text);
  }
  void RemoteMove(int profile, Model& model, bool up) {
    const int size = static_cast<int>(model.file.size());
    const int position = Below(size + 2) - 1;
    const int other = position + (up ? -1 : 1);
    const bool moves = std::min(position, other) >= 0 && std::max(position, other) < size;
    const auto call = up ? &clsPlugin::MoveMessageUpRem : &clsPlugin::MoveMessageDownRem;
    const std::string moved = moves ? model.file[static_cast<std::size_t>(position)] : "";
    ExpectReply((Plugin().*call)(profile, Data(profile, "JO"), position), moves ? "1" : "0");
    if (!moves) return;
    std::swap(model.file[static_cast<std::size_t>(position)],
              model.file[static_cast<std::size_t>(other)]);
    Log(up ? "Move Rotacasts Up (Message: " : "Move Rotacasts Down (Message: ", moved);
  }
  void RemoteDelete(int profile, Model& model) {
    const auto position = static_cast<std::size_t>(Below(static_cast<int>(model.file.size()) + 1));
    const std::string text = position < model.file.size() ? model.file[position] : "";
    ExpectReply(Plugin().DeleteMessageRem(profile, Data(profile, "JO"), std::to_string(position)),
                "1");
    model.Remove(text);
    RefillIfShown(profile);
    Log("Delete Rotacasts (Message: ", text);
  }
  void RemoteInterval(int profile) {
    const std::string minutes = std::to_string(Below(31));
    ExpectReply(Plugin().ChangeIntervalRem(profile, Data(profile, "JO"), minutes), "");
    intervals_[profile] = minutes;
    Log("Change Rotacasts Interval (New Interval: ", minutes);
  }
  void RemoteSwitch(int profile) {
    const std::string value = std::to_string(Below(3));  // 2 is the greyed box
    ExpectReply(Plugin().EnableRTRem(profile, Data(profile, "JO"), value), "");
    switches_[profile] = value;
    Log("Enable Rotacasts (New Value: ", value);
  }
  void WindowSwitch() {
    Window().chkAuto().UserClicked();
    switches_[2] = switches_[2] == "0" ? "1" : "0";
  }
  void WindowInterval() {
    const std::string typed = Below(4) == 0 ? "x" : std::to_string(Below(100));
    TypeOver(Window().txtInterval(), typed);
    if (typed != "x") intervals_[2] = typed;  // which otherwise snaps back
  }
  void WindowAdd() {
    const std::string text = NewText().substr(0, 60);
    TypeOver(Window().txtMessage(), text);
    Click("cmdAdd", MouseEvent::kLeft);
    if (text.empty()) return;
    models_[2].file.push_back(text);
    models_[2].Refill();
  }
  void WindowMove(bool up) {
    Model& model = models_[2];
    if (model.rows.size() < 2) return;
    const auto upper = static_cast<std::size_t>(Below(static_cast<int>(model.rows.size()) - 1));
    Window().lstMessages().Select(static_cast<std::int32_t>(up ? upper + 1 : upper));
    Press("lstMessages", MouseEvent::kLeft);
    Window().Menu(up ? "mnuUp" : "mnuDown").UserClicked();
    std::swap(model.rows[upper], model.rows[upper + 1]);
    model.file = model.rows;  // the list's order is the new order
  }
  void WindowDelete() {
    Model& model = models_[2];
    if (model.rows.empty()) return;
    const auto row = static_cast<std::size_t>(Below(static_cast<int>(model.rows.size())));
    Window().lstMessages().Select(static_cast<std::int32_t>(row));
    Window().Menu("mnuDelete").UserClicked();
    model.Remove(model.rows[row]);
    model.Refill();
  }

  std::mt19937 random_;
  std::map<int, Model> models_;
  std::map<int, std::string> intervals_{{1, "3"}, {2, "3"}};
  std::map<int, std::string> switches_{{1, "1"}, {2, "1"}};
  std::string log_;
  int texts_ = 0;
};

TEST(NoMessageIsLost, InLongRandomLivesOfTwoLists) {
  for (unsigned seed = 1; seed <= 20; ++seed) {
    RandomLife life(seed);
    for (int step = 0; step < 250; ++step) {
      life.Step();
      ASSERT_NO_FATAL_FAILURE(life.Compare(step)) << "seed " << seed;
    }
  }
}

}  // namespace
}  // namespace rotacasts
