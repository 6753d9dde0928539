// No message is ever lost: every call of every change made to fail, and long random lives of a
// list.

#include <algorithm>
#include <random>

#include "host/ini_text.h"
#include "support/fake_host.h"

namespace rotacasts {
namespace {

using forms::MouseEvent;
using testing::MessageFileBytes;
using testing::PluginHarness;
using Texts = std::vector<std::string>;

/// A plugin that shows profile 2 with the messages a to d, one of them long.
class Scene : public PluginHarness {
 public:
  Scene() {
    host.folders = {"C:\\Host", "C:\\Host\\adminlogs"};
    host.files["C:\\Host\\adminlogs\\2010-03-07.txt"] = "";
    host.MessageFile(2) = MessageFileBytes(kBefore);
    Load(2);
    Window().lstMessages().Select(1);
    host.calls.clear();
  }
  static Variant Pdat() { return Data(2, "JO"); }
  void ClickMenu(const char* item) { Window().Menu(item).UserClicked(); }

  static inline const Texts kBefore = {"a", "b" + std::string(70, 'b'), "c", "d"};
};

/// One changing operation, and what must hold after each way it can fail.
struct Operation {
  const char* name;
  std::function<void(Scene&)> run;
  /// What error reports may name; a failure that is not reported gives `box` to the administrator
  /// or `reply` to the caller instead.
  Texts procedures;
  const char* box;
  /// Which texts the file may hold after a failure.
  std::function<bool(const Texts& after)> holds;
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

/// Deleting the second of four: a failed renumbering keeps what it has not yet taken out, and puts
/// back what it has got round to; the first message is never touched.
bool IsADeleteUnderWay(const Texts& after) {
  return after[0] == "a" && std::all_of(after.begin(), after.end(), [](const std::string& text) {
           return Contains(Scene::kBefore, text);
         });
}

/// An exchange writes twice; between the writes one text stands in both places.
bool IsAnExchangeUnderWay(const Texts& after) {
  Texts half = Scene::kBefore;
  half[1] = half[2];
  Texts whole = half;
  whole[2] = Scene::kBefore[1];
  return IsUntouched(after) || after == half || after == whole;
}

const Operation kOperations[] = {
    {"window add",
     [](Scene& scene) {
       scene.TypeOver(scene.Window().txtMessage(), "new");
       scene.Click("cmdAdd", MouseEvent::kLeft);
     },
     {"LoadMessages"},
     "Failed!|Could not add message!",
     HoldsAllAndAnAdd},
    {"window move up",
     [](Scene& scene) { scene.ClickMenu("mnuUp"); },
     {"mnuUp"},
     nullptr,
     IsUntouched},
    {"window move down",
     [](Scene& scene) { scene.ClickMenu("mnuDown"); },
     {"mnuDown"},
     nullptr,
     IsUntouched},
    {"window delete",
     [](Scene& scene) { scene.ClickMenu("mnuDelete"); },
     {"mnuDelete_Click", "RewriteEntries", "LoadMessages"},
     nullptr,
     IsADeleteUnderWay},
    {"window switch",
     [](Scene& scene) { scene.Window().chkAuto().UserClicked(); },
     {"chkAuto_Click"},
     nullptr,
     IsUntouched},
    {"window interval",
     [](Scene& scene) { scene.TypeOver(scene.Window().txtInterval(), "9"); },
     {"txtInterval_Change"},
     nullptr,
     IsUntouched},
    {"remote add",
     [](Scene& scene) { scene.Plugin().AddMessageRem(2, Scene::Pdat(), "<new>"); },
     {"AddMessageRem", "LoadMessages"},
     nullptr,
     HoldsAllAndAnAdd},
    {"remote delete",
     [](Scene& scene) { scene.Plugin().DeleteMessageRem(2, Scene::Pdat(), 1); },
     {"DeleteMessageRem", "RewriteEntries", "LoadMessages"},
     nullptr,
     IsADeleteUnderWay},
    {"remote up",
     [](Scene& scene) { scene.Plugin().MoveMessageUpRem(2, Scene::Pdat(), 2); },
     {"MoveMessageUpRem"},
     nullptr,
     IsAnExchangeUnderWay},
    {"remote down",
     [](Scene& scene) { scene.Plugin().MoveMessageDownRem(2, Scene::Pdat(), 1); },
     {"MoveMessageDownRem"},
     nullptr,
     IsAnExchangeUnderWay},
    {"remote switch",
     [](Scene& scene) { scene.Plugin().EnableRTRem(2, Scene::Pdat(), "0"); },
     {"EnableRTRem", "chkAuto_Click"},
     nullptr,
     IsUntouched},
    {"remote interval",
     [](Scene& scene) { scene.Plugin().ChangeIntervalRem(2, Scene::Pdat(), "8"); },
     {"ChangeIntervalRem", "txtInterval_Change"},
     nullptr,
     IsUntouched},
};

/// Fails component call number 1, 2, 3, ... of the operation, until a run completes untouched;
/// after each failed run the fault has fired, was reported under the right name, and the file holds
/// what it must. Answers how many calls there were to fail.
int FailEveryCall(const Operation& operation) {
  for (int call = 1;; ++call) {
    Scene scene;
    scene.host.failAtCall = call;
    operation.run(scene);
    if (!scene.host.fired) return call - 1;
    scene.host.failAtCall = 0;
    const std::string where = std::string(operation.name) + ", call " + std::to_string(call);
    const Texts& logged = scene.host.logged;
    if (!logged.empty()) {
      const std::string procedure = logged[0].substr(0, logged[0].find(':'));
      EXPECT_TRUE(Contains(operation.procedures, procedure)) << where << ": " << logged[0];
      EXPECT_NE(logged[0].find(": 57 "), std::string::npos) << where << ": " << logged[0];
    } else if (operation.box != nullptr) {
      EXPECT_TRUE(Contains(scene.host.boxes, operation.box)) << where;
    } else {  // an add that answers "0" is logged as an add, and a failed removal is not reported
      EXPECT_TRUE(Contains(operation.procedures, "RewriteEntries") ||
                  Contains(operation.procedures, "AddMessageRem"))
          << where;
    }
    EXPECT_TRUE(operation.holds(scene.Stored(2))) << where << ":\n" << scene.host.MessageFile(2);
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
    switch (Below(9)) {
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
        return RemoteOption(profile);
      case 6:
        return WindowAdd();
      case 7:
        return WindowMove();
      default:
        return WindowDelete();
    }
  }

  void Compare(int step) {
    for (const int profile : {1, 2}) {
      ASSERT_EQ(Stored(profile), models_[profile].file)
          << "profile " << profile << ", step " << step;
      ASSERT_EQ(State().store.ReadOption(profile, "Interval"), intervals_[profile]) << step;
    }
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
  void RemoteOption(int profile) {
    const std::string minutes = std::to_string(Below(31));
    ExpectReply(Plugin().ChangeIntervalRem(profile, Data(profile, "JO"), minutes), "");
    intervals_[profile] = minutes;
    Log("Change Rotacasts Interval (New Interval: ", minutes);
  }
  void WindowAdd() {
    const std::string text = NewText().substr(0, 60);
    TypeOver(Window().txtMessage(), text);
    Click("cmdAdd", MouseEvent::kLeft);
    if (text.empty()) return;
    models_[2].file.push_back(text);
    models_[2].Refill();
  }
  void WindowMove() {
    Model& model = models_[2];
    if (model.rows.size() < 2) return;
    const auto row = static_cast<std::size_t>(Below(static_cast<int>(model.rows.size()) - 1));
    Window().lstMessages().Select(static_cast<std::int32_t>(row));
    Press("lstMessages", MouseEvent::kLeft);
    Window().Menu("mnuDown").UserClicked();
    std::swap(model.rows[row], model.rows[row + 1]);
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
