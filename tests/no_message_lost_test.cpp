// No message is ever lost: fails every call of every change, and runs long random sequences of
// changes.

#include <algorithm>
#include <random>

#include "siblings/ini_text.h"
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

/// A plugin that shows profile 2 with these messages, before anything was logged.
class Scene : public PluginHarness {
 public:
  Scene() {
    host.folders = {"C:\\Host"};
    host.MessageFile(2) = MessageFileBytes(kBefore);
    Load(2);
    Window().lstMessages().Select(1);
    host.calls.clear();
  }
  std::string Options() {
    return State().store.Open(2).ReadOption(kEnable.key) + ", " +
           State().store.Open(2).ReadOption(kInterval.key);
  }
};

bool Contains(const Texts& texts, const std::string& text) {
  return std::ranges::count(texts, text) > 0;
}

bool ContainsAll(const Texts& texts, const Texts& wanted) {
  return std::ranges::all_of(wanted, [&](const auto& text) { return Contains(texts, text); });
}

/// What the file may contain after a failure: the old contents; the old or the new contents; or,
/// during a delete, at least the texts that stay.
enum class Leaves { AsItWas, AllOrNothing, WhatStays };

/// An operation that changes something, and its result.
struct Operation {
  const char* name;
  std::function<std::string(Scene&)> run;  // returns the reply; empty for a change in the window
  Leaves leaves = Leaves::AsItWas;
  Texts after = kBefore;
  std::string reply = "";
  std::string options = kOptionsBefore;
  /// The box for a failure that is neither logged nor answered by "0".
  std::string notice = "";
  /// The call whose failure the caller does not learn about: the reply reports success, and the
  /// next listing shows the actual result.
  std::string silentCall = "-";
};

const Texts kWithNew = {"a", kLong, "c", "d", "new"};
const Texts kUp = {kLong, "a", "c", "d"};
const Texts kDown = {"a", "c", kLong, "d"};
const Texts kDeleted = {"a", "c", "d"};

auto InWindow(void (*act)(Scene& scene)) {
  return [act](Scene& scene) { return act(scene), std::string(); };
}
auto Menu(const char* item) {
  return [item](Scene& scene) { return scene.Window().Menu(item).UserClicked(), std::string(); };
}
auto Remote(PluginHarness::RemoteCall call, const HostValue& data) {
  return [call, data](Scene& scene) { return scene.Remote(call, data); };
}

// clang-format off
const Operation kOperations[] = {
    {"add", InWindow([](Scene& scene) { scene.AddInWindow("new"); }),
     Leaves::AllOrNothing, kWithNew, "", kOptionsBefore,
     "Failed!|Could not add message!"},
    {"up", Menu("mnuUp"), Leaves::AsItWas, kUp},
    {"down", Menu("mnuDown"), Leaves::AsItWas, kDown},
    {"delete", Menu("mnuDelete"), Leaves::WhatStays, kDeleted, "", kOptionsBefore,
     "Failed!|Could not delete message!"},
    {"switch", InWindow([](Scene& scene) { scene.Window().chkAuto().UserClicked(); }),
     Leaves::AsItWas, kBefore, "", "0, 1"},
    {"interval", InWindow([](Scene& scene) { scene.TypeOver(scene.Window().txtInterval(), "9"); }),
     Leaves::AsItWas, kBefore, "", "1, 9"},
    {"remote add", Remote(&clsPlugin::AddMessageRem, "<new>"), Leaves::AllOrNothing, kWithNew, "1"},
    {"remote delete", Remote(&clsPlugin::DeleteMessageRem, 1), Leaves::WhatStays, kDeleted, "1",
     kOptionsBefore, "", "WriteIniKey(Messages, 2, null"},
    {"remote up", Remote(&clsPlugin::MoveMessageUpRem, 2), Leaves::AllOrNothing, kDown, "1"},
    {"remote down", Remote(&clsPlugin::MoveMessageDownRem, 1), Leaves::AllOrNothing, kDown, "1"},
    {"remote switch", Remote(&clsPlugin::EnableRTRem, "0"), Leaves::AsItWas, kBefore, "", "0, 1"},
    {"remote interval", Remote(&clsPlugin::ChangeIntervalRem, "8"), Leaves::AsItWas, kBefore, "",
     "1, 8"},
};
// clang-format on

/// Checks that somebody learns of a failed run, that its reply claims no more than was done, and
/// that the file has what it must.
void CheckFailure(const Operation& operation, Scene& scene, const std::string& reply, int call) {
  const std::string failed = scene.host.calls[static_cast<std::size_t>(call) - 1];
  SCOPED_TRACE(operation.name + (", call " + std::to_string(call)) + ": " + failed);
  const bool isSilent = failed.starts_with(operation.silentCall);
  EXPECT_TRUE(isSilent || reply == "0" || scene.host.logged.size() == 1 ||
              Contains(scene.host.boxes, operation.notice));
  const Texts stored = scene.Stored(2);
  const bool isDone = stored == operation.after;
  EXPECT_TRUE(stored == kBefore || (isDone && operation.leaves == Leaves::AllOrNothing) ||
              (operation.leaves == Leaves::WhatStays && ContainsAll(stored, operation.after)))
      << scene.host.MessageFile(2);
  // Renumbering reports its own errors; by then the delete itself is done.
  const bool isRenumbering = !scene.TakeErrors().empty() && operation.leaves == Leaves::WhatStays;
  EXPECT_TRUE(reply != "1" || isDone || isSilent || isRenumbering);
  EXPECT_EQ(scene.Options(), call == 1 ? kOptionsBefore : operation.options);
}

/// Fails component call number 1, 2, 3, ... of each operation until a run completes without
/// failing.
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
      SCOPED_TRACE(operation.name);
      EXPECT_GT(call, 1);
      EXPECT_EQ(reply, operation.reply);
      EXPECT_EQ(scene.Stored(2), operation.after);
      EXPECT_EQ(scene.Options(), operation.options);
      EXPECT_EQ(scene.host.logged, Texts{});
    }
  }
}

/// Random changes of two lists: remote ones of the first, remote ones and some in the window of the
/// second. All texts differ, so that rows and messages can be matched by text.
class RandomLife : public PluginHarness {
 public:
  explicit RandomLife(unsigned seed) : random_(seed) {
    host.folders = {"C:\\Host"};
    Load(1);
    Load(2);
  }

  /// Makes one change. Checks that no text appears or disappears except the intended one, and that
  /// the window shows the file's contents after its own changes.
  void Step() {
    const int profile = 1 + static_cast<int>(Below(2));
    const bool inWindow = profile == 2 && Below(2) == 0;
    const std::size_t kind = Below(std::size(kCalls));
    const Texts before = Stored(profile);
    Texts texts = before;
    if (kind == 0) texts.push_back(std::to_string(++count_) + std::string(Below(90), '='));
    if (texts.empty()) return;
    const std::size_t at = kind == 0 ? texts.size() - 1 : Below(texts.size());
    if (inWindow) {
      texts[at] = ChangeInWindow(kind, texts[at]);
    } else {
      const HostValue data(kind == 0 ? "<" + texts[at] + ">" : std::to_string(at));
      Remote(kCalls[kind], data, profile);
    }
    if (kind == 3) texts.erase(texts.begin() + static_cast<std::ptrdiff_t>(at));
    Texts stored = Stored(profile);
    ASSERT_TRUE(std::ranges::is_permutation(stored, texts)) << host.MessageFile(profile);
    if (!inWindow || stored == before) return;
    for (std::string& text : stored) text = text.substr(0, 60);
    ASSERT_EQ(Rows(), stored);
  }

 private:
  static constexpr RemoteCall kCalls[] = {&clsPlugin::AddMessageRem, &clsPlugin::MoveMessageUpRem,
                                          &clsPlugin::MoveMessageDownRem,
                                          &clsPlugin::DeleteMessageRem};
  std::size_t Below(std::size_t limit) { return random_() % limit; }

  /// Makes a change in the window. Returns the text as the window stores it: a typed one is not
  /// longer than a row.
  std::string ChangeInWindow(std::size_t kind, const std::string& text) {
    constexpr const char* kItems[] = {"", "mnuUp", "mnuDown", "mnuDelete"};
    const std::string row = text.substr(0, 60);
    if (kind == 0) {
      AddInWindow(text);
      return row;
    }
    const Texts rows = Rows();
    const auto place = std::ranges::find(rows, row) - rows.begin();
    Window().lstMessages().Select(static_cast<std::int32_t>(place));
    Press("lstMessages", MouseEvent::kMiddle);  // enables the items that apply
    Window().Menu(kItems[kind]).UserClicked();
    return text;
  }

  std::mt19937 random_;
  int count_ = 0;
};

TEST(NoMessageIsLost, InLongRandomLivesOfTwoLists) {
  for (unsigned seed = 1; seed <= 20; ++seed) {
    RandomLife life(seed);
    for (int step = 0; step < 250; ++step) {
      ASSERT_NO_FATAL_FAILURE(life.Step()) << "seed " << seed << ", step " << step;
    }
  }
}

}  // namespace
}  // namespace rotacasts
