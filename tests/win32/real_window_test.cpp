// The settings window as a user sees it: real controls, real input.

#include <oleacc.h>

#include <algorithm>
#include <cmath>
#include <map>

#include "broadcast/placeholders.h"
#include "com/com_support.h"
#include "forms/win32/gdi.h"
#include "support/component_test.h"
#include "ui/layout.h"

namespace rotacasts {
namespace {

constexpr int kGameState = 0x00C87598;  // of a "JO" server
const char* const kAdded = "Success|Message added successfully!";

class RealWindowTest : public ComponentTest {
 protected:
  void ChooseFromList(int row, const std::string& item) {
    user.WillChoose({item});
    RightClickRow(row);
  }
  void ChooseFromEntry(Texts items) {
    user.WillChoose(std::move(items));
    ClickMouse(Control("txtMessage"), true);
  }
  static RECT AreaOf(HWND window) {
    RECT area;
    ::GetWindowRect(window, &area);
    return area;
  }
};

TEST_F(RealWindowTest, LiesInTheHostsAreaWithEveryControlInItsPlace) {
  Show({"a", "b"});
  const auto expectPlace = [](HWND window, HWND parent, const RECT& expected,
                              std::string_view what) {
    RECT area = AreaOf(window);
    ::MapWindowPoints(nullptr, parent, reinterpret_cast<POINT*>(&area), 2);
    EXPECT_NE(::EqualRect(&area, &expected), FALSE) << what << area.right << " " << area.bottom;
  };
  expectPlace(Form(), frame->Get(), {2, 30, 748, 430}, "area");  // without the host's heading
  const auto pixels = [](std::int32_t twips) { return std::lround(twips / 15.0); };
  const auto all = layout::Controls();
  for (const layout::ControlRow& row : all) {
    const HWND control = Control(row.name);
    const auto container = std::ranges::find(all, row.container, &layout::ControlRow::name);
    const forms::Rectangle in = container != all.end() ? container->bounds : forms::Rectangle{};
    const std::int32_t left = in.left + row.bounds.left;
    const std::int32_t top = in.top + row.bounds.top;
    const RECT place = {pixels(left), pixels(top), pixels(left + row.bounds.width),
                        pixels(top + row.bounds.height)};
    expectPlace(control, Form(), place, row.name);
    const auto font = reinterpret_cast<HFONT>(::SendMessageW(control, WM_GETFONT, 0, 0));
    LOGFONTW look{};
    ::GetObjectW(font, sizeof look, &look);
    EXPECT_STREQ(look.lfFaceName, L"Tahoma") << row.name;
    // 8.25 points; a label may be smaller if its line would not fit in this machine's font.
    const bool isLabel = row.kind == forms::Kind::Label;
    EXPECT_EQ(look.lfHeight, isLabel ? std::max(look.lfHeight, -11L) : -11) << row.name;
    EXPECT_TRUE(!isLabel || win32::TextWidth(font, row.text) <= row.bounds.width / 15) << row.name;
    EXPECT_NE(::IsWindowVisible(control), FALSE) << row.name;
    EXPECT_TRUE(row.kind == forms::Kind::TextBox || TextOf(row.name) == row.text);
  }
  EXPECT_EQ(::SendMessageW(Control("lstMessages"), LB_GETITEMDATA, 1, 0), 2);
  EXPECT_EQ(::SendMessageW(Control("chkAuto"), BM_GETCHECK, 0, 0), BST_CHECKED);

  Call("HideInterface", {});
  EXPECT_EQ(::IsWindowVisible(Form()), FALSE);
  Load(2);
  EXPECT_NE(::IsWindowVisible(Form()), FALSE);
}

TEST_F(RealWindowTest, KeepsFocusAndPlaceOverADeleteAndAMessageBox) {
  Texts messages;
  for (int i = 0; i < 100; ++i) messages.push_back("message " + std::to_string(i));
  Show(messages);
  const HWND list = Control("lstMessages");
  ::SetFocus(list);
  ::SendMessageW(list, LB_SETTOPINDEX, 60, 0);
  ChooseFromList(65, "Delete");
  EXPECT_EQ(Rows().size(), 99U);
  EXPECT_EQ(::GetFocus(), list);
  EXPECT_EQ(::SendMessageW(list, LB_GETTOPINDEX, 0, 0), 60);
  Load(3);
  Load(2);
  EXPECT_EQ(::SendMessageW(list, LB_GETTOPINDEX, 0, 0), 0) << "another profile begins at its top";
  ::SetFocus(Control("txtMessage"));
  ClickMouse(AddButton());
  EXPECT_EQ(user.boxes.size(), 1U);
  EXPECT_EQ(::GetFocus(), Control("txtMessage"));
}

TEST_F(RealWindowTest, AReleaseBelongsToItsPressAndALostPressShowsTheButtonReleased) {
  Show({"a"});
  const HWND picture = AddButton();
  const HWND caption = ::GetWindow(picture, GW_CHILD);
  const auto captionTop = [&] { return AreaOf(caption).top; };
  const LONG released = captionTop();
  ::SendMessageW(caption, WM_LBUTTONUP, 0, MAKELPARAM(9, 9));
  ::SendMessageW(picture, WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(1, 1));
  EXPECT_GT(captionTop(), released);
  ::SendMessageW(picture, WM_RBUTTONUP, MK_LBUTTON, MAKELPARAM(1, 1));
  ::ReleaseCapture();
  EXPECT_EQ(captionTop(), released);
  ::SendMessageW(picture, WM_LBUTTONUP, 0, MAKELPARAM(1, 1));
  EXPECT_EQ(user.boxes, Texts{});
  ClickMouse(picture);
  EXPECT_EQ(user.boxes, Texts{"Failed!|Message Box is empty!"});
}

/// Replaces the system's service that names windows for accessibility clients: the methods of
/// IAccPropServices, in order, of which two are called.
class NamesService final : public IUnknown {
 public:
  HRESULT WINAPI QueryInterface(REFIID, void** object) override { return *object = this, S_OK; }
  ULONG WINAPI AddRef() override { return 2; }
  ULONG WINAPI Release() override { return 1; }
  virtual void SetPropValue() {}
  virtual void SetPropServer() {}
  virtual void ClearProps() {}
  virtual void SetHwndProp() {}
  virtual HRESULT WINAPI SetHwndPropStr(HWND window, DWORD object, DWORD child, MSAAPROPID id,
                                        LPCWSTR text) {
    const bool isClient = object == static_cast<DWORD>(OBJID_CLIENT) && child == CHILDID_SELF;
    if (isClient && IsEqualGUID(id, PROPID_ACC_NAME)) names[window] = text;
    return S_OK;
  }
  virtual void SetHwndPropServer() {}
  virtual HRESULT WINAPI ClearHwndProps(HWND window, DWORD, DWORD, const MSAAPROPID*, int) {
    return names.erase(window), S_OK;
  }

  std::map<HWND, std::wstring> names;
};

TEST_F(RealWindowTest, ScreenReadersFindANameForEachControl) {
  NamesService service;
  // The factory only uses IUnknown, whatever interface this is.
  const auto factory =
      host::MakeFactory(win32::ComPtr<IDispatch>::Take(reinterpret_cast<IDispatch*>(&service)));
  DWORD cookie = 0;
  ::CoRegisterClassObject(CLSID_AccPropServices, factory.Get(), CLSCTX_INPROC_SERVER,
                          REGCLS_MULTIPLEUSE, &cookie);
  Show({"a"});
  EXPECT_EQ(service.names,
            (std::map<HWND, std::wstring>{{Control("txtMessage"), L"Add Rotacast"},
                                          {Control("lstMessages"), L"Rotacasts"},
                                          {Control("chkAuto"), L"Display Rotacasts:"},
                                          {Control("txtInterval"), L"Show Message Every"}}));
  EXPECT_EQ(::GetWindow(Control("txtInterval"), GW_HWNDPREV), Control("Label10"));
  Call("UnLoadInterface", {""});
  EXPECT_TRUE(service.names.empty());
  ::CoRevokeClassObject(cookie);
}

TEST_F(RealWindowTest, IsReadableWhateverTheSystemsTextColourIs) {
  Show({"a"});
  const HDC context = ::GetDC(Form());
  for (const auto& [control, message] : {std::pair("txtMessage", WM_CTLCOLOREDIT),
                                         {"lstMessages", WM_CTLCOLORLISTBOX},
                                         {"Frame1", WM_CTLCOLORSTATIC},
                                         {"Label11", WM_CTLCOLORSTATIC},
                                         {"txtInterval", WM_CTLCOLOREDIT}}) {
    ::SetTextColor(context, RGB(1, 2, 3));
    ::SendMessageW(Form(), message, reinterpret_cast<WPARAM>(context),
                   reinterpret_cast<LPARAM>(Control(control)));
    const bool isSystems = control == std::string("txtInterval");
    EXPECT_EQ(::GetTextColor(context), isSystems ? ::GetSysColor(COLOR_WINDOWTEXT) : RGB(0, 0, 0));
    EXPECT_EQ(::GetBkColor(context) == ::GetSysColor(COLOR_WINDOW),
              isSystems || ::GetBkColor(context) == RGB(255, 255, 255));
  }
  ::ReleaseDC(Form(), context);
}

TEST_F(RealWindowTest, TheTabKeyGoesThroughTheControlsInTheirOrder) {
  Show({"a"});
  ClickMouse(Control("txtMessage"));
  for (const char* name : {"txtMessage", "lstMessages", "chkAuto", "txtInterval", "txtMessage"}) {
    EXPECT_EQ(::GetFocus(), Control(name)) << name;
    PressKey(VK_TAB);
  }
  for (const char* name : {"txtMessage", "txtInterval"}) {
    PressKey(VK_TAB, true);
    EXPECT_EQ(::GetFocus(), Control(name)) << "and back again";
  }
}

TEST_F(RealWindowTest, AMessageIsTypedAndAddedWithTheMouse) {
  Show({"a"});
  ClickMouse(Control("txtMessage"));
  TypeKeys("Hello 7" + std::string(60, 'x'));
  EXPECT_EQ(TextOf("txtMessage").size(), 60U) << "no more can be typed";
  ClickMouse(AddButton());
  ASSERT_EQ(user.boxes, Texts{kAdded});
  EXPECT_TRUE(user.menus.empty());
  EXPECT_EQ(TextOf("txtMessage"), "");
  EXPECT_EQ(Rows(), (Texts{"a", "Hello 7" + std::string(53, 'x')}));
}

TEST_F(RealWindowTest, TheListsMenuIsForTheRowUnderThePointer) {
  Show({"a", "b", "c"});
  ChooseFromList(0, "Move Down");
  EXPECT_EQ(Rows(), (Texts{"b", "a", "c"}));
  RightClickRow(2);  // the menu is cancelled
  EXPECT_EQ(::SendMessageW(Control("lstMessages"), LB_GETCURSEL, 0, 0), 2);
  EXPECT_EQ(user.menus, (std::vector<Texts>{{"(Move Up)", "Move Down", "Delete"},
                                            {"Move Up", "(Move Down)", "Delete"}}));
}

TEST_F(RealWindowTest, TheEntryBoxIsEditedThroughItsMenuWhileItIsDisabled) {
  Show({});
  user.insideMenu = [&] { EXPECT_EQ(::IsWindowEnabled(Control("txtMessage")), FALSE); };
  ChooseFromEntry({"Insert Info Message", "Most Kills"});
  EXPECT_EQ(TextOf("txtMessage"), "{ShowMostKills}");
  ASSERT_EQ(user.menus.size(), 2U);
  EXPECT_EQ(user.menus[0], (Texts{"Insert Info Message", "-", "Cut", "Copy", "Paste", "Delete", "-",
                                  "Select All"}));
  EXPECT_EQ(user.menus[1].size(), AllPlaceholders().size());
  const auto expectAfter = [&](const Texts& items, const char* text) {
    for (const std::string& item : items) ChooseFromEntry({item});
    EXPECT_EQ(TextOf("txtMessage"), text) << items.back();
  };
  expectAfter({"Cut", "Delete"}, "{ShowMostKills}");  // nothing is selected
  expectAfter({"Select All", "Copy", "Delete"}, "");
  expectAfter({"Paste", "Select All", "Cut"}, "");
  expectAfter({"Paste", "Paste"}, "{ShowMostKills}{ShowMostKills}");
  EXPECT_NE(::IsWindowEnabled(Control("txtMessage")), FALSE);
  EXPECT_EQ(::GetFocus(), Control("txtMessage"));
}

TEST_F(RealWindowTest, TheSwitchAndTheIntervalAreStoredAsTheyAreChanged) {
  Show({"a"});
  const auto expectStored = [this](const char* enable, const char* interval) {
    EXPECT_EQ(host.MessageFile(2), MessageFileBytes({"a"}, enable, interval));
  };
  ClickMouse(Control("chkAuto"));
  expectStored("0", "1");
  PressKey(VK_SPACE);
  expectStored("1", "1");
  PressKey(VK_TAB);
  PressKey(VK_END);
  TypeKeys("5");
  expectStored("1", "15");
  PressKey(VK_BACK);
  TypeKeys("x");  // not a number: the old text is restored
  EXPECT_EQ(TextOf("txtInterval"), "1");
  TypeKeys("5");  // replaces the restored text
  expectStored("1", "5");
}

int cancelledMenus = 0;

void CALLBACK CancelMenu(HWND owner, UINT, UINT_PTR, DWORD) {
  GUITHREADINFO thread{};
  thread.cbSize = sizeof thread;
  ::GetGUIThreadInfo(::GetCurrentThreadId(), &thread);
  if ((thread.flags & GUI_INMENUMODE) != 0) ++cancelledMenus;
  ::SendMessageW(owner, WM_CANCELMODE, 0, 0);
}

TEST_F(RealWindowTest, TheKeyboardFindsItsWay) {
  Show({"a"});
  // The menu key opens the entry box's standard menu.
  const HWND entry = Control("txtMessage");
  ::SetTimer(entry, 1, 50, &CancelMenu);
  ::SendMessageW(entry, WM_CONTEXTMENU, reinterpret_cast<WPARAM>(entry), -1);
  ::KillTimer(entry, 1);
  EXPECT_EQ(cancelledMenus, 1);
  EXPECT_NE(::IsWindowEnabled(entry), FALSE);

  const HWND box = Control("chkAuto");
  const auto pixels = [box] {
    ::UpdateWindow(box);
    const HDC context = ::GetDC(box);
    std::vector<COLORREF> seen;
    for (int i = 0; i < 17 * 17; ++i) seen.push_back(::GetPixel(context, i % 17, i / 17));
    ::ReleaseDC(box, context);
    return seen;
  };
  ::SetFocus(entry);
  const auto without = pixels();
  ::SetFocus(box);
  const auto with = pixels();
  EXPECT_NE(with, without);
  PressKey(VK_SPACE);
  PressKey(VK_SPACE);
  EXPECT_EQ(pixels(), with);
  ::SetFocus(entry);
  EXPECT_EQ(pixels(), without);
}

TEST_F(RealWindowTest, TheTimerBroadcastsAlsoWhileTheWindowIsHiddenUntilTheProfileIsDisabled) {
  EXPECT_EQ(installed.CallEntry("RotacastsShortenMinute", LONG{20}), S_OK);  // milliseconds
  host.longs[kGameState] = 2;
  Show({"a", "b"});
  EXPECT_TRUE(PumpUntil([&] { return host.sent.size() >= 3; }));
  Call("HideInterface", {});
  EXPECT_TRUE(PumpUntil([&] { return host.sent.size() >= 6; }));
  Call("DisableProfile", {2});
  const std::size_t sent = host.sent.size();
  const DWORD end = ::GetTickCount() + 100;  // five ticks
  PumpUntil([&] { return ::GetTickCount() > end; });
  EXPECT_EQ(host.sent.size(), sent);
}

}  // namespace
}  // namespace rotacasts
