// The control model, the headless toolkit and its timers.

#include "forms/form.h"

#include <gtest/gtest.h>

#include "forms/headless/headless_toolkit.h"
#include "support/fake_host.h"

namespace rotacasts::forms {
namespace {

using std::chrono::milliseconds;

class FormsTest : public ::testing::Test {
 protected:
  FormsTest() { form->Load(); }
  headless::TimerLoop timers{milliseconds(60)};  // a minute of 60 ms: 1000 ms become 1 ms
  headless::HeadlessToolkit toolkit{timers};
  std::shared_ptr<Form> form = std::make_shared<Form>(toolkit, "form", FormLook{});
};

TEST_F(FormsTest, TimersRunWhileEnabledAndHaveAnInterval) {
  using Clock = headless::TimerLoop::Clock;
  int ticks = 0;
  TimerArray& array = form->Timers();
  array.onTimer = [&](std::int16_t) { ++ticks; };
  EXPECT_EQ(ErrorOf([&] { array.SetInterval(1, 1); }), 340);
  array.Load(1);
  EXPECT_EQ(ErrorOf([&] { array.Load(1); }), 360);
  array.SetInterval(1, 1000);
  EXPECT_FALSE(timers.NextDue());
  array.SetEnabled(1, true);
  const auto first = timers.NextDue();
  ASSERT_TRUE(first);
  array.SetInterval(1, 1000);  // the same value does not restart the period
  EXPECT_EQ(timers.NextDue(), first);
  EXPECT_EQ(timers.RunDue(*first - Clock::duration(1)), 0);
  const auto late = *first + std::chrono::microseconds(10500);  // ten periods and a half
  EXPECT_EQ(timers.RunDue(late), 1);  // one tick, not eleven, and the next one in its turn
  EXPECT_EQ(timers.RunDue(late + Clock::duration(1)), 0);
  EXPECT_EQ(timers.NextDue(), *first + milliseconds(11));
  EXPECT_EQ(ticks, 1);
  array.SetEnabled(1, false);
  EXPECT_FALSE(timers.NextDue());
  array.Tick(1);  // one that was already on its way
  EXPECT_EQ(ticks, 1);
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

TEST_F(FormsTest, AHandlerMayLetGoOfItsForm) {
  const std::weak_ptr<Form> watched = form;
  bool isThere = false;
  MenuItem& item = form->AddMenu("item", "Item", nullptr);
  item.onClick = [&] {
    form.reset();
    isThere = !watched.expired();
  };
  item.UserClicked();
  EXPECT_TRUE(isThere);
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
    list.UserReleased({MouseEvent::kLeft});  // without a press
    list.UserPressed({MouseEvent::kLeft});
    list.UserReleased({MouseEvent::kRight});
    list.UserReleased({MouseEvent::kLeft});
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

}  // namespace
}  // namespace rotacasts::forms
