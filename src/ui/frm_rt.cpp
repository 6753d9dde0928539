#include "ui/frm_rt.h"

#include <algorithm>
#include <optional>
#include <utility>

#include "base/conversions.h"
#include "base/text.h"
#include "forms/window_messages.h"
#include "ui/layout.h"

namespace rotacasts {
namespace {

using forms::ListBox;
using forms::MouseEvent;

// The options as the window shows them where the message file has no usable value, and for a
// profile that has no message file yet.
constexpr const char* kDisabled = "0";
constexpr std::int16_t kEnabledForNewProfile = 1;
constexpr const char* kDefaultInterval = "3";  // minutes
constexpr double kHighestEnable = 1;
constexpr double kHighestInterval = 30;  // minutes

constexpr const char* kAddButton = "cmdAdd";
constexpr const char* kAddPicture = "cmdAddImg";

}  // namespace

/// An item of the entry box's menu that is carried out by a window message to the box.
struct frmRT::EditingItem {
  std::string_view item;
  bool needsSelection;
  std::uint32_t message;
  std::uintptr_t wParam;
  std::intptr_t lParam;
};

const frmRT::EditingItem frmRT::kEditingItems[] = {
    {"mnuCut", true, forms::kWmCut, 0, 0},
    {"mnuCopy", true, forms::kWmCopy, 0, 0},
    {"mnuPaste", false, forms::kWmPaste, 0, 0},
    {"mnuDelete2", false, forms::kEmReplaceSel, 0, reinterpret_cast<std::intptr_t>("")},
    {"mnuSelectAll", false, forms::kEmSetSel, 0, -1},
};

frmRT::frmRT(const SettingsWindowContext& context)
    : Form(context.services.Toolkit(), "frmRT",
           {layout::kClientWidth, layout::kClientHeight, layout::kFace, layout::kFontFace,
            layout::kFontSize}),
      context_(context),
      buttons_(context.services.HostFolder()) {
  layout::BuildControls(*this);
  messages_ = std::make_unique<MessageRows>(lstMessages());
}

void frmRT::Run(std::string_view procedure, const std::function<void(Step&)>& body) {
  const std::int32_t profile = CurrentProfile();
  Guard(context_.reporter, {procedure, profile}, body);
}

void frmRT::OnLoad() {
  Run("Form_Load", [this](Step& at) { Form_Load(at); });
  Timers().onTimer = context_.onTick;
  WireEvents();
}

std::function<void()> frmRT::Handled(std::string_view procedure, Handler handler) {
  return [this, procedure, handler] { Run(procedure, [&](Step& at) { (this->*handler)(at); }); };
}

std::function<void(const MouseEvent&)> frmRT::Handled(std::string_view procedure,
                                                      MouseHandler handler) {
  return [this, procedure, handler](const MouseEvent& event) {
    Run(procedure, [&](Step& at) { (this->*handler)(at, event); });
  };
}

void frmRT::WireEvents() {
  chkAuto().onClick = Handled("chkAuto_Click", &frmRT::chkAuto_Click);
  txtInterval().onChange = Handled("txtInterval_Change", &frmRT::txtInterval_Change);
  lstMessages().onMouseDown = Handled("lstMessagesClick", &frmRT::lstMessages_MouseDown);
  txtMessage().onMouseDown = Handled("txtMessage_MouseDown", &frmRT::txtMessage_MouseDown);
  // The picture's margin acts exactly like the caption on it. Building either can have failed.
  if (forms::Control* caption = Find(kAddButton)) {
    caption->onMouseDown = Handled("cmdAdd_MouseDown", &frmRT::cmdAdd_MouseDown);
    caption->onMouseUp = Handled("cmdAdd_MouseUp", &frmRT::cmdAdd_MouseUp);
    caption->onPressLost = Handled("cmdAdd_MouseUp", &frmRT::cmdAdd_PressLost);
  }
  if (forms::Control* picture = Find(kAddPicture)) {
    picture->onMouseDown = Handled("cmdAddImg_MouseDown", &frmRT::cmdAdd_MouseDown);
    picture->onMouseUp = Handled("cmdAddImg_MouseUp", &frmRT::cmdAdd_MouseUp);
    picture->onPressLost = Handled("cmdAddImg_MouseUp", &frmRT::cmdAdd_PressLost);
  }
}

void frmRT::MakeMenus() {
  layout::BuildMenus(*this);
  Menu("mnuUp").onClick = Handled("mnuUp", &frmRT::mnuUp_Click);
  Menu("mnuDown").onClick = Handled("mnuDown", &frmRT::mnuDown_Click);
  Menu("mnuDelete").onClick = Handled("mnuDelete_Click", &frmRT::mnuDelete_Click);
  for (const layout::MenuRow& row : layout::Menus()) {
    if (row.token.empty()) continue;
    Menu(row.name).onClick = [this, &row] {
      Run(row.name, [&](Step&) { txtMessage().SetText(std::string(row.token)); });
    };
  }
  for (const EditingItem& item : kEditingItems) {
    Menu(item.item).onClick = [this, &item] { Run(item.item, [&](Step&) { Edit(item); }); };
  }
}

void frmRT::Form_Load(Step& at) {
  ImageButtonArguments arguments{.bounds = layout::kAddButton,
                                 .caption = "Add",
                                 .window = *this,
                                 .name = kAddPicture,
                                 .container = Find("Frame2")};
  at(1);
  buttons_.CreateButtonImage(arguments);
  at(2);
  arguments.name = kAddButton;
  buttons_.CreateButtonLabel(arguments);
}

void frmRT::Form_Reload() {
  Run("Form_Reload", [&](Step& at) {
    const std::int32_t profile = CurrentProfile();
    at(1);
    if (std::exchange(reloadedProfile_, profile) != profile) messages_->BeginAtTheTop();
    context_.store.LoadMessages(profile);
    if (Shows(profile)) ShowOptions(profile, at);
    at(4);
    if (Shows(profile)) WriteOption(profile, kEnableKey, std::to_string(chkAuto().Value()));
    at(5);
    if (Shows(profile)) WriteOption(profile, kIntervalKey, txtInterval().Text());
  });
}

void frmRT::ShowOptions(std::int32_t profile, Step& at) {
  at(2);
  context_.store.Open(profile);  // a stopped profile has no options to show
  if (!context_.services.FileSystem().FileExists(context_.tables.MessageFiles(profile))) {
    at(3);
    chkAuto().SetValue(kEnabledForNewProfile);
    if (Shows(profile)) txtInterval().SetText(kDefaultInterval);
    return;
  }
  const std::string enable = OptionToShow(profile, kEnableKey, kHighestEnable, kDisabled);
  if (!Shows(profile)) return;
  chkAuto().SetValue(ToInteger(enable));
  if (!Shows(profile)) return;
  const std::string interval =
      OptionToShow(profile, kIntervalKey, kHighestInterval, kDefaultInterval);
  if (Shows(profile)) txtInterval().SetText(interval);
}

std::string frmRT::OptionToShow(std::int32_t profile, const char* key, double highest,
                                const char* defaultText) {
  const std::string stored = context_.store.Open(profile).ReadOption(key);
  if (stored.empty()) return defaultText;
  const double number = ToDouble(stored);
  return number < 0 || number > highest ? defaultText : stored;
}

void frmRT::WriteOption(std::int32_t profile, const char* key, const std::string& value) {
  context_.store.SetOption(profile, key, value);
}

void frmRT::chkAuto_Click(Step& at) {
  at(1);
  const std::int16_t value = chkAuto().Value();
  if (value == 0 || value == 1) WriteOption(CurrentProfile(), kEnableKey, std::to_string(value));
}

void frmRT::txtInterval_Change(Step& at) {
  at(1);
  const std::int32_t profile = CurrentProfile();
  const std::string text(TrimSpaces(txtInterval().Text()));
  if (IsNumeric(text)) return WriteOption(profile, kIntervalKey, text);
  at(2);
  const std::string stored = context_.store.Open(profile).ReadOption(kIntervalKey);
  if (!Shows(profile)) return;
  txtInterval().SetText(stored);
  // Selected, so that typing goes on with a new number and not after the one that came back.
  if (Shows(profile)) Send(txtInterval(), forms::kEmSetSel, 0, -1);
}

void frmRT::cmdAdd_MouseDown(Step& at, const MouseEvent& event) {
  at(1);
  if (event.button == MouseEvent::kLeft) buttons_.SetButtonState(*this, kAddPicture, "Down");
}

void frmRT::cmdAdd_MouseUp(Step& at, const MouseEvent& event) {
  at(1);
  if (event.button == MouseEvent::kLeft) buttons_.SetButtonState(*this, kAddPicture, "Up");
  Add(at);
}

void frmRT::cmdAdd_PressLost(Step& at) {
  at(1);
  buttons_.SetButtonState(*this, kAddPicture, "Up");
}

void frmRT::Add(Step& at) {
  at(2);
  const std::int32_t profile = CurrentProfile();
  const std::string text = txtMessage().Text();
  if (TrimSpaces(text).empty()) {
    return context_.reporter.Notify(Outcome::Failure, "Message Box is empty!");
  }
  at(3);
  const std::string message(FirstCharacters(text, kMessageCharacters));
  if (!context_.store.AddEntry(profile, message)) {
    at(5);
    return context_.reporter.Notify(Outcome::Failure, "Could not add message!");
  }
  at(4);
  context_.reporter.Notify(Outcome::Success, "Message added successfully!");
  if (!Shows(profile)) return;
  txtMessage().SetText("");
  context_.store.LoadMessages(profile);
}

void frmRT::lstMessages_MouseDown(Step& at, const MouseEvent& event) {
  at(1);
  const bool isRight = event.button == MouseEvent::kRight;
  if (isRight) {
    const std::int32_t row = ListIndexFromPoint(event.x, event.y);
    if (row != ListBox::kNone) lstMessages().Select(row);
  }
  at(2);
  EnableListMenu();
  at(3);
  if (isRight && lstMessages().SelectedRow() >= 0) PopUp(Menu("mnuMain"));
}

std::int32_t frmRT::ListIndexFromPoint(float X, float Y) {
  const forms::TwipsPerPixel screen = GetToolkit().ScreenTwipsPerPixel();
  // The pixel that the whole number of twips lies in, also where a pixel is no whole number of
  // them.
  const auto pixel = [](float twips, double factor) {
    return static_cast<std::intptr_t>((RoundToLong(twips) + 0.5) / factor);
  };
  const std::intptr_t point = pixel(Y, screen.vertical) * 65536 + pixel(X, screen.horizontal);
  const std::intptr_t answer = Send(lstMessages(), forms::kLbItemFromPoint, 0, point);
  return (answer & forms::kLbOutsideItems) != 0 ? ListBox::kNone
                                                : static_cast<std::int32_t>(answer);
}

void frmRT::EnableListMenu() {
  const std::int16_t rows = ToInteger(lstMessages().Count());
  const std::int16_t selected = ToInteger(lstMessages().SelectedRow());
  Menu("mnuUp").enabled = rows > 1 && selected != 0;
  Menu("mnuDown").enabled = rows > 1 && selected != rows - 1;
}

void frmRT::MoveSelected(Step& at, std::int16_t by) {
  at(1);
  const std::int32_t profile = CurrentProfile();
  const std::int32_t row = ToInteger(lstMessages().SelectedRow());
  const std::int32_t neighbour = row + by;
  const std::vector<MessageRow> before = messages_->All();
  std::vector<MessageRow> rows = before;
  std::swap(rows[lstMessages().Checked(row)], rows[lstMessages().Checked(neighbour)]);
  bool isUpToDate = false;
  // The file first: should that fail, the list still shows what the file holds.
  at(2);
  context_.store.ReplaceEntries(profile, [&](const MessageEntries& entries) {
    const Places places = PlacesOf(rows, entries);
    isUpToDate = std::ranges::all_of(places, [](const auto& place) { return place.has_value(); });
    const auto isFound = [&](std::int32_t moved) {
      return places[static_cast<std::size_t>(moved)].has_value();
    };
    return isFound(row) && isFound(neighbour) ? std::optional(InOrder(places, entries))
                                              : std::nullopt;
  });
  if (!Shows(profile)) return;
  if (!isUpToDate || messages_->All() != before) return context_.store.LoadMessages(profile);
  messages_->Exchange(row, neighbour);
}

void frmRT::mnuDelete_Click(Step& at) {
  at(1);
  const std::int32_t profile = CurrentProfile();
  const std::int16_t selected = ToInteger(lstMessages().SelectedRow());
  if (selected < 0) return;
  const bool removed = Remove(profile, messages_->All().at(lstMessages().Checked(selected)));
  at(2);
  if (Shows(profile)) context_.store.LoadMessages(profile);
  if (!removed) context_.reporter.Notify(Outcome::Failure, "Could not delete message!");
}

bool frmRT::Remove(std::int32_t profile, const MessageRow& row) {
  const MessageEntries entries = context_.store.Open(profile).Entries();
  const std::optional<std::size_t> place = PlacesOf({row}, entries)[0];
  if (!place) return true;
  const std::string& key = entries[*place].key;
  const auto holders = std::ranges::count_if(
      entries, [&](const auto& entry) { return EqualsIgnoringCase(entry.key, key); });
  if (holders == 1) return context_.store.DeleteEntry(profile, key);
  // A hand has given the key twice, and removing it would take the first one's text.
  context_.store.ReplaceEntries(
      profile, [&](const MessageEntries& now) -> std::optional<std::vector<std::string>> {
        const std::optional<std::size_t> gone = PlacesOf({row}, now)[0];
        if (!gone) return std::nullopt;
        std::vector<std::string> others;
        for (std::size_t i = 0; i < now.size(); ++i) {
          if (i != *gone) others.push_back(now[i].text);
        }
        return others;
      });
  return true;
}

void frmRT::txtMessage_MouseDown(Step& at, const MouseEvent& event) {
  if (event.button != MouseEvent::kRight) return;
  at(1);
  struct Disabled {  // keeps the box from showing a menu of its own
    explicit Disabled(forms::TextBox& textBox) : box(textBox) { box.SetEnabled(false); }
    ~Disabled() {
      box.SetEnabled(true);
      box.SetFocus();
    }
    forms::TextBox& box;
  } disabled(txtMessage());
  at(2);
  PopUp(Menu("mnuMessages"));
}

void frmRT::Edit(const EditingItem& item) {
  if (item.needsSelection && txtMessage().Selection().length == 0) return;
  Send(txtMessage(), item.message, item.wParam, item.lParam);
}

}  // namespace rotacasts
