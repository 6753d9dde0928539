// The control model, the headless toolkit and its timers.

#include "platform/forms/form.h"

#include <gtest/gtest.h>

#include "platform/forms/window_messages.h"
#include "platform/headless/headless_toolkit.h"
#include "support/fake_host.h"

namespace rotacasts::forms {
namespace {

using rotacasts::testing::ErrorOf;
using std::chrono::milliseconds;

class FormsTest : public ::testing::Test {
 protected:
  FormsTest() { form->Load(); }
  headless::TimerLoop timers{milliseconds(60)};  // a minute of 60 ms: 1000 model ms are 1 ms
  headless::HeadlessToolkit toolkit{timers};
  std::shared_ptr<Form> form = std::make_shared<Form>(toolkit, "form", FormLook{});
};

TEST_F(FormsTest, EventsAreRaisedByChangesOnly) {
  auto& box = form->Add<CheckBox>("box");
  auto& text = form->Add<TextBox>("text");
  int clicks = 0;
  int changes = 0;
  box.onClick = [&] { ++clicks; };
  text.onChange = [&] { ++changes; };
  box.SetValue(0);
  box.SetValue(1);
  box.SetValue(1);
  text.SetText("");
  text.SetText("a");
  text.SetText("a");
  EXPECT_EQ(clicks, 1);
  EXPECT_EQ(changes, 1);
  for (const std::int16_t bad : std::initializer_list<std::int16_t>{-1, 3}) {
    EXPECT_EQ(ErrorOf([&] { box.SetValue(bad); }), 380) << bad;
  }
  EXPECT_EQ(box.Value(), 1);
  box.SetValue(2);
  box.UserClicked();  // a greyed box becomes unchecked
  EXPECT_EQ(box.Value(), 0);
}

TEST_F(FormsTest, TheTypingLimitBindsTheTypistAndNotTheProgram) {
  auto& box = form->Add<TextBox>("box");
  box.SetMaxLength(4);
  box.SetText("program");
  EXPECT_EQ(box.Text(), "program");
  box.SetText("");
  const auto type = [&](const char* ansi) {
    form->Send(box, kEmReplaceSel, 1, reinterpret_cast<std::intptr_t>(ansi));
  };
  type(
      "\xFC"
      "bers");
  EXPECT_EQ(box.Text(), "über");
  form->Send(box, kEmSetSel, 1, 3);
  EXPECT_EQ(box.Selection().length, 2U);
  type("xyz");
  EXPECT_EQ(box.Text(), "üxyr");
  EXPECT_EQ(box.Selection().start, 3U);
}

TEST_F(FormsTest, CutCopyAndPasteWorkOnTheSelection) {
  auto& box = form->Add<TextBox>("box");
  box.SetText("abcdef");
  form->Send(box, kEmSetSel, 2, 4);
  form->Send(box, kWmCopy, 0, 0);
  form->Send(box, kWmCut, 0, 0);
  EXPECT_EQ(box.Text(), "abef");
  form->Send(box, kEmSetSel, 0, -1);
  form->Send(box, kWmPaste, 0, 0);
  EXPECT_EQ(box.Text(), "cd");
}

TEST_F(FormsTest, ListRowsAreFoundByPoint) {
  auto& list = form->Add<ListBox>("list");
  const auto rowAt = [&](int y) { return form->Send(list, kLbItemFromPoint, 0, y * 65536 + 5); };
  EXPECT_TRUE(rowAt(3) & kLbOutsideItems);
  list.Add("a");
  list.Add("b");
  EXPECT_EQ(rowAt(headless::kRowHeight + 1), 1);
  EXPECT_TRUE(rowAt(2 * headless::kRowHeight) & kLbOutsideItems);
  EXPECT_EQ(ErrorOf([&] { list.At(2); }), 380);
  EXPECT_EQ(ErrorOf([&] { list.Select(-2); }), 380);
  list.Select(1);
  list.Clear();
  EXPECT_EQ(list.SelectedRow(), ListBox::kNone);
}

TEST_F(FormsTest, TimerArrayRefusesWhatIsNotThere) {
  TimerArray& array = form->Timers();
  array.Load(3);
  EXPECT_EQ(ErrorOf([&] { array.Load(3); }), 360);
  EXPECT_EQ(ErrorOf([&] { array.Load(0); }), 360);
  EXPECT_EQ(ErrorOf([&] { array.SetInterval(4, 1); }), 340);
  EXPECT_EQ(ErrorOf([&] { array.Unload(4); }), 340);
  EXPECT_EQ(ErrorOf([&] { array.Unload(0); }), 362);
  array.Unload(3);
  EXPECT_EQ(ErrorOf([&] { array.At(3); }), 340);
}

TEST_F(FormsTest, TimersRunWhileEnabledAndHaveAnInterval) {
  using Clock = headless::TimerLoop::Clock;
  std::vector<int> ticks;
  form->Timers().onTimer = [&](std::int16_t index) { ticks.push_back(index); };
  form->Timers().Load(1);
  form->Timers().SetInterval(1, 1000);
  EXPECT_FALSE(timers.NextDue());
  form->Timers().SetEnabled(1, true);
  const auto first = timers.NextDue();
  ASSERT_TRUE(first);
  form->Timers().SetInterval(1, 1000);  // the same again leaves the period that runs alone
  EXPECT_EQ(timers.NextDue(), first);
  EXPECT_EQ(timers.RunDue(*first - Clock::duration(1)), 0);
  timers.RunDue(*first + milliseconds(10));  // late by ten periods: one tick, not ten
  timers.RunDue(*first + milliseconds(10));
  EXPECT_EQ(ticks, (std::vector<int>{1}));
  form->Timers().SetEnabled(1, false);
  EXPECT_FALSE(timers.NextDue());
  form->Timers().Tick(1);  // one that was under way already
  EXPECT_EQ(ticks.size(), 1U);
}

TEST_F(FormsTest, ATickMayUnloadItsOwnTimerAndAnothersThatIsDue) {
  std::vector<int> ticks;
  for (const std::int16_t index : std::initializer_list<std::int16_t>{1, 2}) {
    form->Timers().Load(index);
    form->Timers().SetInterval(index, 1000);
    form->Timers().SetEnabled(index, true);
  }
  form->Timers().onTimer = [&](std::int16_t index) {
    ticks.push_back(index);
    form->Timers().Unload(1);
    form->Timers().Unload(2);
  };
  timers.RunDue(headless::TimerLoop::Clock::now() + std::chrono::hours(1));
  EXPECT_EQ(ticks, (std::vector<int>{1}));
}

TEST_F(FormsTest, NothingAHandlerNeedsDiesUnderIt) {
  auto& box = form->Add<CheckBox>("box");
  form->Timers().Load(1);
  form->Timers().SetInterval(1, 1000);
  form->Timers().SetEnabled(1, true);
  bool ended = false;
  box.onClick = [&, text = std::string("captured")] {
    form->Unload();
    form.reset();  // the last reference from outside
    EXPECT_EQ(box.Value(), 1);
    EXPECT_EQ(text, "captured");
    box.SetEnabled(false);
    ended = true;
  };
  box.UserClicked();
  EXPECT_TRUE(ended);
  EXPECT_FALSE(timers.NextDue());
}

TEST_F(FormsTest, ActsThatArriveAfterTheUnloadDoNothing) {
  auto& box = form->Add<CheckBox>("box");
  auto& text = form->Add<TextBox>("text");
  auto& list = form->Add<ListBox>("list");
  MenuItem& item = form->AddMenu("item", "Item", nullptr);
  int events = 0;
  box.onClick = text.onChange = item.onClick = [&] { ++events; };
  list.onMouseDown = list.onMouseUp = [&](const MouseEvent&) { ++events; };
  list.Add("a");
  const auto act = [&] {
    box.UserClicked();
    text.UserChangedText(text.Text() + "x");
    list.UserSelected(list.SelectedRow() + 1);
    list.UserPressed({});
    list.UserReleased({});
    item.UserClicked();
  };
  for (const bool loaded : {true, false}) {
    act();
    EXPECT_EQ(events, 5) << loaded;
    EXPECT_EQ(box.Value(), 1) << loaded;
    EXPECT_EQ(text.Text(), "x") << loaded;
    EXPECT_EQ(list.SelectedRow(), 0) << loaded;
    form->Unload();
  }
}

TEST_F(FormsTest, CannotBeShownWhileAMessageBoxIsOpen) {
  int error = 0;
  toolkit.onMessageBox = [&](const std::string&, const std::string&) {
    EXPECT_EQ(toolkit.OpenMessageBoxes(), 1);
    error = ErrorOf([&] { form->Show(); });
  };
  toolkit.ShowMessageBox("text", "title");
  EXPECT_EQ(error, 401);
  EXPECT_FALSE(form->IsVisible());
  form->Show();
  EXPECT_TRUE(form->IsVisible());
  toolkit.onMessageBox = [](const std::string&, const std::string&) { throw 1; };
  EXPECT_ANY_THROW(toolkit.ShowMessageBox("", ""));
  EXPECT_EQ(toolkit.OpenMessageBoxes(), 0);
}

}  // namespace
}  // namespace rotacasts::forms
