// Every visit at every call, and random ones up to three deep, in this process.

#include "support/visits.h"

#include "plugin/remote_operations.h"

namespace rotacasts {
namespace {

using forms::MouseEvent;
using testing::Change;

class HeadlessPlugin final : public testing::VisitedPlugin {
 public:
  HeadlessPlugin() : VisitedPlugin(harness_.host) {
    const auto at = [this](const std::string& place) {
      if (onPlace) onPlace(place);
    };
    harness_.toolkit.onMessageBox = [at](const std::string& text, const std::string& title) {
      at(title + "|" + text);
    };
    harness_.toolkit.onLoadPicture = [at](const std::string&) { at("picture"); };
    harness_.toolkit.onPopUp = [this, at](forms::MenuItem&) {
      forms::MenuItem* const item = &harness_.Window().Menu(choice_);
      at("menu");
      return item;
    };
    harness_.toolkit.onRowAt = [](const forms::ListBox&, std::int32_t, std::int32_t) { return 1; };
  }

  void Load(std::int32_t index) override { harness_.Load(index); }
  std::string Call(const char* member, std::vector<HostValue> arguments) override {
    clsPlugin& plugin = harness_.Plugin();
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
    if (const auto window = harness_.State().window.IfLoaded()) window->Timers().Tick(index);
  }
  void Make(Change change, const std::string& text) override {
    const auto window = harness_.State().window.IfLoaded();
    if (!window) return;
    switch (change) {
      case Change::Press:
        harness_.TypeOver(window->txtMessage(), text);
        return harness_.Press("cmdAdd", MouseEvent::kLeft);
      case Change::Release:
        return window->Find("cmdAdd")->UserReleased({MouseEvent::kLeft, 0, 0});
      case Change::Up:
        return Choose("lstMessages", "mnuUp");
      case Change::Down:
        return Choose("lstMessages", "mnuDown");
      case Change::Delete:
        return Choose("lstMessages", "mnuDelete");
      case Change::Token:
        return Choose("txtMessage", "mnuNextMap");
      case Change::Switch:
        return window->chkAuto().UserClicked();
      case Change::Interval:
        return harness_.TypeOver(window->txtInterval(), "5");
      case Change::NoInterval:
        return harness_.TypeOver(window->txtInterval(), "x");
    }
  }
  std::optional<Shown> Window() override {
    const auto window = harness_.State().window.IfLoaded();
    if (!window) return std::nullopt;
    return Shown{harness_.Rows(), std::to_string(window->chkAuto().Value()),
                 window->txtInterval().Text()};
  }
  std::string State() override {
    ProfileTables& tables = harness_.State().tables;
    std::string state;
    if (testing::ErrorOf([&] {
          state =
              std::to_string(tables.NextMessage(2)) + " " + std::to_string(tables.ElapsedTicks(2));
        }) != 0) {
      state = "0 0";
    }
    const auto window = harness_.State().window.IfLoaded();
    const bool runs = window && window->Timers().Elements().contains(2);
    return state + (runs ? "" : " no timer");
  }
  bool IsGone() override {
    return harness_.State().window.IfLoaded() == nullptr && !harness_.timers.NextDue() &&
           harness_.toolkit.OpenMessageBoxes() == 0;
  }

 private:
  void Choose(const char* control, const char* item) {
    choice_ = item;
    harness_.Press(control, MouseEvent::kRight);
  }

  testing::PluginHarness harness_;
  std::string choice_;
};

TEST(Visits, OfEachKindAtEveryPlaceOfEveryOperationDoNoHarm) {
  HeadlessPlugin plugin;
  std::printf("%d visits, each at its place\n", testing::VisitEveryPlace(plugin));
}

TEST(Visits, InsideEachOtherDoNoHarm) {
  HeadlessPlugin plugin;
  std::printf("%d visits at random places\n", testing::VisitAtRandom(plugin, 3000, 1));
}

}  // namespace
}  // namespace rotacasts
