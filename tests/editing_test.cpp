// Editing in the settings window: the Add button, the list's menu, the entry box's menu.

#include <algorithm>
#include <array>

#include "broadcast/placeholders.h"
#include "support/fake_host.h"
#include "ui/layout.h"

namespace rotacasts {
namespace {

using forms::MouseEvent;

constexpr int kRowHeight = 13;  // pixels

class EditingTest : public PluginTest {
 protected:
  EditingTest() {
    toolkit.onPopUp = [this](forms::MenuItem& menu) -> forms::MenuItem* {
      shown.push_back(menu.name);
      return choice.empty() ? nullptr : &Window().Menu(choice);
    };
    toolkit.onRowAt = [](const forms::ListBox& list, std::int32_t, std::int32_t y) {
      const std::int32_t row = y / kRowHeight;
      return row < list.Count() ? row : forms::ListBox::kNone;
    };
  }
  void Show(const Texts& listed) {
    host.MessageFile(2) = MessageFileBytes(listed);
    Load(2);
    host.calls.clear();
  }
  void RightClickRow(int row) {
    Press("lstMessages", MouseEvent::kRight, 100, static_cast<float>(row * kRowHeight * 15 + 20));
  }
  /// Chooses an item of the list's menu for a row.
  void Choose(int row, const char* item) {
    choice = item;
    RightClickRow(row);
    choice.clear();
  }
  const forms::Rectangle& Caption() { return Window().Find("cmdAdd")->Bounds(); }
  const std::string& Picture() { return Window().Get<forms::Image>("cmdAddImg").Picture(); }

  Texts shown;  // menus
  std::string choice;
};

TEST_F(EditingTest, TheAddButtonMovesWhilePressedWithAndWithoutPictures) {
  const forms::Rectangle released{9245, 428, 1065, 495};
  const forms::Rectangle pressed{9265, 478, 1065, 495};
  for (const bool pictures : {true, false}) {
    if (!pictures) {
      toolkit.onLoadPicture = [](const std::string& path) {
        throw RuntimeError(ErrorNumber::FileNotFound, path);
      };
      Plugin().UnLoadInterface("");
    }
    Show({});
    EXPECT_EQ(Picture(), pictures ? "C:\\Host\\imgs\\butup.gif" : "");
    for (const char* part : {"cmdAdd", "cmdAddImg"}) {
      Press(part, MouseEvent::kLeft);
      EXPECT_EQ(Caption(), pressed);
      EXPECT_EQ(Picture(), pictures ? "C:\\Host\\imgs\\butdown.gif" : "");
      Window().Find(part)->UserReleased({MouseEvent::kLeft, -9000, 0});  // far from the button
      EXPECT_EQ(TakeBoxes(), Texts{"Failed!|Message Box is empty!"});
      EXPECT_EQ(Caption(), released);
      Press(part, MouseEvent::kRight);
      EXPECT_EQ(Caption(), released);
    }
  }
}

TEST_F(EditingTest, AddingStoresTheFirstSixtyCharactersAsTyped) {
  Show({"a"});
  AddInWindow("   ");
  EXPECT_TRUE(host.calls.empty());
  host.failAtCall = 2;
  AddInWindow("b");
  EXPECT_EQ(TakeBoxes(),
            (Texts{"Failed!|Message Box is empty!", "Failed!|Could not add message!"}));
  EXPECT_EQ(Window().txtMessage().Text(), "b");
  toolkit.onMessageBox = [this](const std::string& text, const std::string&) {
    EXPECT_EQ(text, "Message added successfully!");
    EXPECT_EQ(Rows(), Texts{"a"});  // refilled after the box is closed
    EXPECT_EQ(Window().txtMessage().Text(), " Grüße ");
  };
  AddInWindow(" Grüße ");
  EXPECT_EQ(Stored(2), (Texts{"a", " Grüße "}));
  EXPECT_EQ(Rows(), Stored(2));
  EXPECT_EQ(Window().txtMessage().Text(), "");
  toolkit.onMessageBox = nullptr;
  Window().txtMessage().SetText(std::string(70, 'x'));  // longer than anybody could type
  Click("cmdAddImg", MouseEvent::kRight);
  EXPECT_EQ(Stored(2).back(), std::string(60, 'x'));
}

TEST_F(EditingTest, ARightClickSelectsTheRowAndShowsTheMenu) {
  Show({"a", "b", "c"});
  RightClickRow(7);
  EXPECT_TRUE(shown.empty());     // nothing selected, no menu
  for (const int row : {1, 7}) {  // below the last row: the menu is for the selected one
    RightClickRow(row);
    EXPECT_EQ(Window().lstMessages().SelectedRow(), 1);
  }
  Press("lstMessages", MouseEvent::kLeft, 0, 20);
  EXPECT_EQ(shown, Texts(2, "mnuMain"));
}

TEST_F(EditingTest, TheMenuOffersTheMovesThatThereAre) {
  using Row = std::tuple<Texts, int, bool, bool>;
  for (const auto& [messages, selected, up, down] :
       {Row{{"a"}, 0, false, false}, Row{{"a", "b"}, 0, false, true},
        Row{{"a", "b"}, 1, true, false}, Row{{"a", "b", "c"}, 1, true, true},
        Row{{"a", "b"}, -1, true, true}}) {
    Show(messages);
    Window().lstMessages().Select(selected);
    Press("lstMessages", MouseEvent::kMiddle);
    EXPECT_EQ(Window().Menu("mnuUp").enabled, up);
    EXPECT_EQ(Window().Menu("mnuDown").enabled, down);
  }
  Choose(0, "mnuUp");  // disabled
  Window().Menu("mnuUp").onClick();
  EXPECT_EQ(Rows(), (Texts{"a", "b"}));
  EXPECT_EQ(host.logged, Texts{"mnuUp: 380 Invalid property value"});
}

TEST_F(EditingTest, MovingKeepsLongMessagesWholeAndLosesNoneThatTheListDoesNotShow) {
  const std::string alike(60, 'x');
  Show({alike + " one", alike + " two", "b"});
  host.MessageFile(2) = "[Messages]\r\n1=" + alike + " one\r\n2=" + alike +
                        " two\r\n3=b\r\n4=added by hand\r\n0=hidden\r\n";
  Choose(0, "mnuDown");
  EXPECT_EQ(Stored(2), (Texts{alike + " two", alike + " one", "b", "added by hand", "hidden"}));
  EXPECT_EQ(Rows(), (Texts{alike, alike, "b"}));
  EXPECT_EQ(Window().lstMessages().At(0).data, 2) << "the item data goes with the row";
  Choose(1, "mnuDown");
  EXPECT_EQ(Stored(2), (Texts{alike + " two", "b", alike + " one", "added by hand", "hidden"}));
  Choose(0, "mnuDelete");
  EXPECT_EQ(Stored(2), (Texts{"b", alike + " one", "added by hand", "hidden"}));
}

TEST_F(EditingTest, AChangeTakesTheMessageThatTheRowShowsOrNone) {
  const std::string alike(60, 'x');
  const Texts four{alike + " one", "b", alike + " two", "c"};
  const std::string listed = MessageFileBytes(four);
  const Texts turned{"c", alike + " two", "b", alike + " one"};
  const std::string twice = "[Messages]\r\n1=a\r\n1=b\r\n";
  const std::string sparse = "[Messages]\r\n2=a\r\n1=b\r\n2=c\r\n1=d\r\n";
  using Row = std::tuple<const char*, int, std::string, std::string, Texts>;
  for (const auto& [item, row, before, stored, left] :  // somebody else stores a change meanwhile
       {Row{"mnuUp", 1, listed, MessageFileBytes(turned), turned},
        Row{"mnuDelete", 0, listed, MessageFileBytes(turned), turned},
        Row{"mnuUp", 3, listed, MessageFileBytes({"a"}), {"a"}},
        Row{"mnuDelete", 1, listed, MessageFileBytes({"a"}), {"a"}},
        Row{"mnuDelete", 1, listed, MessageFileBytes(turned), {"c", turned[1], turned[3]}},
        Row{"mnuUp", 3, listed, MessageFileBytes({"c", alike + " 2"}), {"c", alike + " 2"}},
        Row{"mnuDelete", 0, MessageFileBytes({"b", "c"}), MessageFileBytes({"c", "b"}), {"c"}},
        Row{"mnuDelete", 0, MessageFileBytes({"a"}), MessageFileBytes({"b"}), {"b"}},
        Row{"mnuDelete", 1, twice, twice, {"a"}}, Row{"mnuDelete", 0, twice, twice, {"b"}},
        Row{"mnuDelete", 2, sparse, sparse, {"a", "b", "d"}}}) {
    host.MessageFile(2) = before;
    Load(2);
    host.MessageFile(2) = stored;
    Window().lstMessages().Select(row);
    Window().Menu(item).onClick();
    EXPECT_EQ(Stored(2), left) << item << row;
    Texts rows;
    for (const std::string& text : left) rows.push_back(text.substr(0, 60));
    EXPECT_EQ(Rows(), rows) << item << row;
  }
}

TEST_F(EditingTest, AStoppedProfileIsToldOfAndNothingIsCalledForIt) {
  Show({"a", "b"});
  Plugin().DisableProfile(2);
  AddInWindow("c");
  Choose(0, "mnuDown");
  Choose(0, "mnuDelete");
  Window().chkAuto().UserClicked();
  TypeOver(Window().txtInterval(), "7");
  TypeOver(Window().txtInterval(), "x");
  EXPECT_EQ(host.boxes.at(0), "Failed!|Could not add message!");
  EXPECT_EQ(TakeErrors(), (Texts{"mnuDown: 76", "mnuDelete_Click: 76", "chkAuto_Click: 76",
                                 "txtInterval_Change: 76", "txtInterval_Change: 76"}));
  Plugin().LoadInterface(2, 77, Data(2, "JO", {{pdat::kProfileFolder, "..\\.."}}));
  EXPECT_EQ(TakeErrors(), Texts{"SetProfileData: 76"});
  EXPECT_EQ(Rows(), Texts{});
  Window().chkAuto().SetValue(1);
  Window().txtInterval().SetText("1");
  TakeErrors();
  host.longs[0x00C87598] = 2;
  Tick(2);
  EXPECT_EQ(TakeErrors(), Texts{}) << "told of every minute";
  for (const std::string& call : host.calls) {
    EXPECT_EQ(call.find(", )"), std::string::npos) << call << ": an empty path";
  }
}

TEST_F(EditingTest, TheRowUnderThePointerIsFoundAtEveryDisplay) {
  Show(Texts(20, "a"));
  for (const int dotsPerInch : {96, 120, 144, 168, 192}) {
    toolkit.screen = {1440.0 / dotsPerInch, 1440.0 / dotsPerInch};
    for (int y = 0; y < 20 * kRowHeight; ++y) {
      Press("lstMessages", MouseEvent::kRight, 0, static_cast<float>(y * toolkit.screen.vertical));
      ASSERT_EQ(Window().lstMessages().SelectedRow(), y / kRowHeight) << dotsPerInch << " " << y;
    }
  }
}

TEST_F(EditingTest, TokensReplaceTheEntry) {
  Show({});
  for (const layout::MenuRow& row : layout::Menus()) {
    if (row.token.empty()) continue;
    Window().txtMessage().SetText("Hello");
    choice = row.name;
    Press("txtMessage", MouseEvent::kRight);
    EXPECT_EQ(Window().txtMessage().Text(), row.token);
  }
  EXPECT_EQ(shown, Texts(AllPlaceholders().size(), "mnuMessages"));
  EXPECT_TRUE(host.calls.empty());
}

}  // namespace
}  // namespace rotacasts
