#include "ui/handlers.h"

#include <exception>
#include <optional>
#include <utility>

#include "base/conversions.h"
#include "base/text.h"
#include "ui/shown_profile.h"

namespace rotacasts {
namespace {

using forms::ListBox;
using forms::MouseEvent;

/// The stored option as the window shows it. Error 13 for one that is no number.
std::string OptionToShow(MessageFile& file, const Option& option) {
  const std::string stored = file.ReadOption(option.key);
  if (stored.empty()) return option.fallback;
  const double number = ToDouble(stored);
  return number < option.lowest || number > option.highest ? option.fallback : stored;
}

// What is stored of the window's options; nothing for what is not to be stored.
using Shown = std::optional<std::string>;
Shown SwitchShown(const frmRT& window) {
  const std::int16_t value = window.chkAuto().Value();
  return value == 0 || value == 1 ? Shown(std::to_string(value)) : std::nullopt;  // 2 is greyed
}
Shown IntervalShown(const frmRT& window) {
  return window.txtInterval().Text();
}
Shown IntervalTyped(const frmRT& window) {
  std::string text(TrimSpaces(window.txtInterval().Text()));
  return IsNumeric(text) ? Shown(std::move(text)) : std::nullopt;
}

/// Writes an option as the window shows it, and once more if that has changed inside the call or a
/// window was made there, so that window and file agree. False when it is not to be stored.
bool StoreOption(const Handling& h, MessageFile& file, const char* key,
                 Shown (*shown)(const frmRT& window)) {
  Shown value = shown(h.Window());
  while (value) {
    file.SetOption(key, *value);
    const auto now = h.shown.Now();
    if (!now) throw Overtaken();
    if (std::exchange(value, shown(*now)) == value) return true;
  }
  return false;
}

/// The row of the list under a point in twips, or -1.
std::int32_t ListIndexFromPoint(frmRT& window, float X, float Y) {
  const forms::TwipsPerPixel screen = window.GetToolkit().ScreenTwipsPerPixel();
  // The pixel that the whole number of twips lies in, also where a pixel is no whole number of
  // them.
  const auto pixel = [](float twips, double factor) {
    return static_cast<std::int32_t>((RoundToLong(twips) + 0.5) / factor);
  };
  return window.lstMessages().RowAt(pixel(X, screen.horizontal), pixel(Y, screen.vertical));
}

void EnableListMenu(frmRT& window) {
  const std::int16_t rows = ToInteger(window.lstMessages().Count());
  const std::int16_t selected = ToInteger(window.lstMessages().SelectedRow());
  window.Menu("mnuUp").enabled = rows > 1 && selected != 0;
  window.Menu("mnuDown").enabled = rows > 1 && selected != rows - 1;
}

}  // namespace

const EditingItem kEditingItems[5] = {
    {"mnuCut", true, &forms::TextBox::Cut},
    {"mnuCopy", true, &forms::TextBox::Copy},
    {"mnuPaste", false, &forms::TextBox::Paste},
    {"mnuDelete2", false, &forms::TextBox::DeleteSelection},
    {"mnuSelectAll", false, &forms::TextBox::SelectAll},
};

frmRT& Handling::Window() const {
  return shown.Window();
}

void Handlers::Run(std::string_view procedure,
                   const std::function<void(const Handling&)>& body) const {
  const std::int32_t profile = context_.tables.currentWindowProfile;
  const ShownProfile shown(context_.window, context_.tables, profile);
  Guard(context_.reporter, {procedure, profile}, [&](Step& at) { body({at, shown}); });
}

void Handlers::Form_Reload(const Handling& h) const {
  h.at(1);
  h.Window().BeginAtTheTopOf(h.shown.Profile());
  LoadMessages(h.shown);
  h.at(2);
  if (h.Window(); !context_.store.HasFile(h.shown.Profile())) return;
  MessageFile file = context_.store.Open(h.shown.Profile());
  ShowOptions(h, file);
  h.at(4);
  StoreOption(h, file, kEnable.key, SwitchShown);
  h.at(5);
  StoreOption(h, file, kInterval.key, IntervalShown);
}

void Handlers::LoadMessages(const ShownProfile& shown) const {
  Guard(context_.reporter, {"LoadMessages", shown.Profile()}, [&](Step& at) {
    at(1);
    if (!shown.Now()) throw Overtaken();
    const std::string file = context_.tables.MessageFiles(shown.Profile());
    const ShownProfile now(context_.window, context_.tables, shown.Profile());
    MessageSection section(context_.services.Utility(), file);
    std::vector<std::string> lines;  // of a missing file, none
    at(2);
    if (!file.empty() && context_.services.FileSystem().FileExists(file)) lines = section.Lines();
    at(6);
    std::vector<ListedMessage> rows;
    std::exception_ptr error;  // what was read before it is listed all the same
    try {
      rows.reserve(lines.size());
      for (std::string& line : lines) {
        if (auto row = RowOf(section, line)) rows.push_back(std::move(*row));
      }
    } catch (...) {
      error = std::current_exception();
    }
    // A filling that came in between has read the file later than this one.
    if (!now.WasFilled()) now.If([&](frmRT& window) { window.Messages().Fill(std::move(rows)); });
    if (error) std::rethrow_exception(error);
  });
}

void Handlers::ShowOptions(const Handling& h, MessageFile& file) const {
  if (!context_.services.FileSystem().FileExists(file.File())) {
    h.at(3);
    h.Window().chkAuto().SetValue(ToInteger(kEnable.initial));
    h.Window().txtInterval().SetText(kInterval.initial);
    return;
  }
  const std::string enable = OptionToShow(file, kEnable);
  h.Window().chkAuto().SetValue(ToInteger(enable));
  const std::string interval = OptionToShow(file, kInterval);
  h.Window().txtInterval().SetText(interval);
}

void Handlers::chkAuto_Click(const Handling& h) const {
  h.at(1);
  if (!SwitchShown(h.Window())) return;
  MessageFile file = context_.store.Open(h.shown.Profile());
  StoreOption(h, file, kEnable.key, SwitchShown);
}

void Handlers::txtInterval_Change(const Handling& h) const {
  h.at(1);
  MessageFile file = context_.store.Open(h.shown.Profile());
  if (StoreOption(h, file, kInterval.key, IntervalTyped)) return;
  h.at(2);
  const std::string stored = file.ReadOption(kInterval.key);
  h.Window().txtInterval().SetText(stored);
  // Selected, so that typing goes on with a new number and not after the one that came back.
  h.Window().txtInterval().SelectAll();
}

void Handlers::cmdAdd_MouseDown(const Handling& h, const MouseEvent& event) const {
  h.at(1);
  if (event.button != MouseEvent::kLeft) return;
  buttons_.SetButtonState(h.Window(), frmRT::kAddPicture, "Down");
}

void Handlers::cmdAdd_MouseUp(const Handling& h, const MouseEvent& event) const {
  h.at(1);
  if (event.button == MouseEvent::kLeft) cmdAdd_PressLost(h);
  Add(h);
}

void Handlers::cmdAdd_PressLost(const Handling& h) const {
  h.at(1);
  buttons_.SetButtonState(h.Window(), frmRT::kAddPicture, "Up");
}

void Handlers::Add(const Handling& h) const {
  h.at(2);
  frmRT& window = h.Window();
  const std::string text = window.txtMessage().Text();
  if (TrimSpaces(text).empty()) {
    return context_.reporter.Notify(Outcome::Failure, "Message Box is empty!");
  }
  h.at(3);
  const std::string message(FirstCharacters(text, kMessageCharacters));
  if (!context_.store.AddEntry(h.shown.Profile(), message)) {
    h.at(5);
    return context_.reporter.Notify(Outcome::Failure, "Could not add message!");
  }
  h.at(4);
  context_.reporter.Notify(Outcome::Success, "Message added successfully!");
  if (const auto now = h.shown.Now(); now.get() == &window) window.txtMessage().SetText("");
  LoadMessages(h.shown);
}

void Handlers::lstMessages_MouseDown(const Handling& h, const MouseEvent& event) const {
  h.at(1);
  frmRT& window = h.Window();
  const bool isRight = event.button == MouseEvent::kRight;
  if (isRight) {
    const std::int32_t row = ListIndexFromPoint(window, event.x, event.y);
    if (row != ListBox::kNone) window.lstMessages().Select(row);
  }
  h.at(2);
  EnableListMenu(window);
  h.at(3);
  if (isRight && window.lstMessages().SelectedRow() >= 0) window.PopUp(window.Menu("mnuMain"));
}

void Handlers::MoveSelected(const Handling& h, std::int16_t by) const {
  h.at(1);
  const ListBox& list = h.Window().lstMessages();
  const std::int32_t row = ToInteger(list.SelectedRow());
  if (row < 0) return;  // the list was filled again while the menu was open
  const std::int32_t neighbour = row + by;
  const std::vector<ListedMessage> before = h.Window().Messages().All();
  const std::size_t places[] = {list.Index(row), list.Index(neighbour)};
  // The file first: should that fail, the list still shows what the file holds.
  h.at(2);
  MessageFile file = context_.store.Open(h.shown.Profile());
  const bool isUpToDate = ExchangeListed(file, before, places[0], places[1]);
  h.shown.If([&](frmRT& now) {
    if (!isUpToDate || now.Messages().All() != before) return LoadMessages(h.shown);
    now.Messages().Exchange(row, neighbour);
  });
}

void Handlers::mnuDelete_Click(const Handling& h) const {
  h.at(1);
  const ListBox& list = h.Window().lstMessages();
  const std::int16_t selected = ToInteger(list.SelectedRow());
  if (selected < 0) return;
  MessageFile file = context_.store.Open(h.shown.Profile());
  const bool removed = RemoveListed(file, h.Window().Messages().All().at(list.Index(selected)));
  h.at(2);
  LoadMessages(h.shown);
  if (!removed) context_.reporter.Notify(Outcome::Failure, "Could not delete message!");
}

void Handlers::txtMessage_MouseDown(const Handling& h, const MouseEvent& event) const {
  if (event.button != MouseEvent::kRight) return;
  h.at(1);
  struct Disabled {  // keeps the box from showing a menu of its own
    explicit Disabled(forms::TextBox& textBox) : box(textBox) { box.SetEnabled(false); }
    ~Disabled() {
      box.SetEnabled(true);
      box.SetFocus();
    }
    forms::TextBox& box;
  } disabled(h.Window().txtMessage());
  h.at(2);
  h.Window().PopUp(h.Window().Menu("mnuMessages"));
}

void Handlers::InsertToken(const Handling& h, std::string_view token) const {
  h.Window().txtMessage().SetText(std::string(token));
}

void Handlers::Edit(const Handling& h, const EditingItem& item) const {
  forms::TextBox& box = h.Window().txtMessage();
  if (item.needsSelection && box.Selection().length == 0) return;
  (box.*item.edit)();
}

}  // namespace rotacasts
