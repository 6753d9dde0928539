// Visits in the DLL: the components, boxes and menus visit, each change is made at the real
// control. The test in one process makes every visit; here a prime step spreads those there is time
// for over visits and places. Not seen here: the file system, which is the system's own object, and
// the pictures, which no component loads; counters and timers, which the component shows to nobody.

#include "support/visits.h"

#include <algorithm>

#include "support/component_test.h"
#include "ui/layout.h"

namespace rotacasts {
namespace {

class DllVisitsTest : public ComponentTest, public VisitedPlugin {
 protected:
  DllVisitsTest() : VisitedPlugin(ComponentTest::host) { VisitBoxesAndMenus(); }

  void Load(std::int32_t index) override { ComponentTest::Load(index); }
  std::string Call(const char* member, std::vector<HostValue> arguments) override {
    HostValue reply = ComponentTest::Call(member, std::move(arguments));
    return reply.AsText() != nullptr ? *reply.AsText() : "";
  }
  void Tick(std::int16_t index) override {
    if (Form() != nullptr) ::SendMessageW(Form(), WM_TIMER, static_cast<WPARAM>(index), 0);
  }
  void Act(const std::string& control, const std::string& text) override {
    if (Form() == nullptr) return;
    if (control == "mnuNextMap") {
      user.WillChoose({"Insert Info Message", "Next Map"});
      ::SendMessageW(Control("txtMessage"), WM_RBUTTONDOWN, MK_RBUTTON, MAKELPARAM(3, 3));
    } else if (control.starts_with("mnu")) {
      user.WillChoose({std::string(
          std::ranges::find(layout::Menus(), control, &layout::MenuRow::name)->caption)});
      RightClickRow(1);
    } else if (control == "chkAuto") {
      ::SendMessageW(Control("chkAuto"), BM_CLICK, 0, 0);
    } else if (control == "txtInterval") {
      ::SetWindowTextA(Control("txtInterval"), text.c_str());
    } else if (text.empty()) {
      ::SendMessageW(AddButton(), WM_LBUTTONUP, 0, MAKELPARAM(1, 1));
    } else {
      ::SetWindowTextA(Control("txtMessage"), text.c_str());
      ::SendMessageW(AddButton(), WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(1, 1));
    }
  }
  void FreeParent() override { frame.reset(), frame.emplace(); }
  Texts Shown() override {
    if (Form() == nullptr) return {};
    Texts shown = Rows();
    shown.push_back(std::to_string(::SendMessageW(Control("chkAuto"), BM_GETCHECK, 0, 0)));
    shown.push_back(TextOf("txtInterval"));
    return shown;
  }
  bool IsGone() override {
    plugin.reset();
    const bool isGone = Form() == nullptr && installed.CallEntry("DllCanUnloadNow") == S_OK;
    plugin.emplace(InstalledPlugin::Create());
    return isGone;
  }

 private:
  void VisitBoxesAndMenus() {
    const auto visit = [this](const std::string& place) {
      VisitBoxesAndMenus();  // those that open inside
      if (onPlace) onPlace(place);
    };
    user.insideBox = [this, visit] { visit(user.boxes.back()); };
    user.insideMenu = [visit] { visit("menu"); };
  }
};

TEST_F(DllVisitsTest, AtPlacesOfEveryOperationDoNoHarm) {
  std::printf("%d visits, each at its place\n", VisitEveryPlace(*this, 23));
}

TEST_F(DllVisitsTest, InsideEachOtherDoNoHarm) {
  std::printf("%d visits at random places\n", VisitAtRandom(*this, 25, 2));
}

}  // namespace
}  // namespace rotacasts
