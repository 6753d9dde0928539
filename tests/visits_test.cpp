// Every visit at every call, and random ones inside each other, in this process.

#include "support/visits.h"

#include "plugin/remote_operations.h"

namespace rotacasts {
namespace {

using forms::MouseEvent;

class HeadlessVisits : public PluginTest, public VisitedPlugin {
 protected:
  HeadlessVisits() : VisitedPlugin(host) {
    toolkit.onMessageBox = [this](const std::string& text, const std::string& title) {
      onPlace(title + "|" + text);
    };
    toolkit.onLoadPicture = [this](const std::string&) { onPlace("picture"); };
    toolkit.onPopUp = [this](forms::MenuItem&) {
      forms::MenuItem* const item = &Window().Menu(choice_);
      onPlace("menu");
      return item;
    };
    toolkit.onRowAt = [](const forms::ListBox& list, std::int32_t, std::int32_t) {
      return list.Count() > 1 ? 1 : forms::ListBox::kNone;
    };
  }

  void Load(std::int32_t index) override { PluginTest::Load(index); }
  std::string Call(const char* member, std::vector<HostValue> arguments) override {
    clsPlugin& plugin = Plugin();
    for (const RemoteOperation& operation : kRemoteOperations) {
      if (operation.name != std::string_view(member)) continue;
      return (plugin.*operation.call)(2, arguments[1], arguments.back());
    }
    if (member == std::string_view("DisableProfile")) plugin.DisableProfile(2);
    if (member == std::string_view("HideInterface")) plugin.HideInterface();
    if (member == std::string_view("UnLoadInterface")) plugin.UnLoadInterface("");
    return {};
  }
  void Tick(std::int16_t index) override {
    if (const auto window = IfLoaded()) window->Timers().Tick(index);
  }
  void Act(const std::string& control, const std::string& text) override {
    const auto window = IfLoaded();
    if (!window) return;
    if (control.starts_with("mnu")) {
      choice_ = control;
      return Press(control == "mnuNextMap" ? "txtMessage" : "lstMessages", MouseEvent::kRight);
    }
    if (control == "chkAuto") return window->chkAuto().UserClicked();
    if (control == "txtInterval") return TypeOver(window->txtInterval(), text);
    if (text.empty()) return window->Find("cmdAdd")->UserReleased({MouseEvent::kLeft, 0, 0});
    TypeOver(window->txtMessage(), text);
    Press("cmdAdd", MouseEvent::kLeft);
  }
  void FreeParent() override {
    if (const auto window = IfLoaded()) window->ViewDestroyed();
  }
  Texts Shown() override {
    const auto window = IfLoaded();
    if (!window) return {};
    Texts shown = Rows();
    shown.push_back(std::to_string(window->chkAuto().Value()));
    shown.push_back(window->txtInterval().Text());
    return shown;
  }
  std::string Counters() override {
    const auto window = IfLoaded();
    const bool ticks = window && window->Timers().Elements().contains(2);
    ProfileTables& tables = State().tables;
    std::string counters = "0 0";  // of tables that do not reach the profile
    if (ArrayInit(tables.NextMessage) && tables.NextMessage.UpperBound() >= 2) {
      counters =
          std::to_string(tables.NextMessage(2)) + " " + std::to_string(tables.ElapsedTicks(2));
    }
    return counters + (ticks ? "" : " no timer");
  }
  bool IsGone() override {
    return !IfLoaded() && !timers.NextDue() && toolkit.OpenMessageBoxes() == 0;
  }

 private:
  std::shared_ptr<frmRT> IfLoaded() { return State().window.IfLoaded(); }

  std::string choice_;
};

TEST_F(HeadlessVisits, AtEveryPlaceOfEveryOperationDoNoHarm) {
  std::printf("%d visits, each at its place\n", VisitEveryPlace(*this));
}

TEST_F(HeadlessVisits, InsideEachOtherDoNoHarm) {
  std::printf("%d visits at random places\n", VisitAtRandom(*this, 1500, 1));
}

}  // namespace
}  // namespace rotacasts
