#include "ui/frm_rt.h"

#include <variant>

#include "platform/conversions.h"
#include "platform/text.h"
#include "ui/layout.h"

namespace rotacasts {
namespace {

// The options as the window shows them where the message file has no usable value, and for a
// profile that has no message file yet.
constexpr const char* kDisabled = "0";
constexpr std::int16_t kEnabledForNewProfile = 1;
constexpr const char* kDefaultInterval = "3";  // minutes
constexpr double kHighestEnable = 1;
constexpr double kHighestInterval = 30;  // minutes

enum class Event { Click, Change };

}  // namespace

/// A handled event: the control or menu item, and the name under which its errors are reported.
struct frmRT::EventRow {
  std::string_view control;
  Event event;
  std::string_view procedure;
  void (frmRT::*handler)(Step&);
};

const frmRT::EventRow frmRT::kEvents[] = {
    {"chkAuto", Event::Click, "chkAuto_Click", &frmRT::chkAuto_Click},
    {"txtInterval", Event::Change, "txtInterval_Change", &frmRT::txtInterval_Change},
};

frmRT::frmRT(const SettingsWindowContext& context)
    : Form(context.services.Toolkit(), "frmRT",
           {layout::kClientWidth, layout::kClientHeight, layout::kFace, layout::kFontFace,
            layout::kFontSize}),
      context_(context) {
  layout::Build(*this);
}

void frmRT::OnLoad() {
  WireEvents();
  Timers().onTimer = context_.onTick;
}

void frmRT::WireEvents() {
  for (const EventRow& row : kEvents) {
    const auto handle = [this, &row] {
      Guard(context_.reporter, {row.procedure, context_.tables.currentWindowProfile},
            [&](Step& at) { (this->*row.handler)(at); });
    };
    if (row.event == Event::Click) Get<forms::CheckBox>(row.control).onClick = handle;
    if (row.event == Event::Change) Get<forms::TextBox>(row.control).onChange = handle;
  }
}

void frmRT::Form_Reload() {
  Guard(context_.reporter, {"Form_Reload", context_.tables.currentWindowProfile}, [&](Step& at) {
    at(1);
    context_.store.LoadMessages(CurrentProfile());
    at(2);
    if (context_.services.FileSystem().FileExists(context_.tables.MessageFiles(CurrentProfile()))) {
      chkAuto().SetValue(ToInteger(OptionToShow(kEnableKey, kHighestEnable, kDisabled)));
      txtInterval().SetText(OptionToShow(kIntervalKey, kHighestInterval, kDefaultInterval));
    } else {
      at(3);
      chkAuto().SetValue(kEnabledForNewProfile);
      txtInterval().SetText(kDefaultInterval);
    }
    at(4);
    WriteOption(kEnableKey, std::to_string(chkAuto().Value()));
    at(5);
    WriteOption(kIntervalKey, txtInterval().Text());
  });
}

std::string frmRT::OptionToShow(const char* key, double highest, const char* defaultText) {
  const std::string stored = context_.store.ReadOption(CurrentProfile(), key);
  if (stored.empty()) return defaultText;
  const double number = ToDouble(stored);
  return number < 0 || number > highest ? defaultText : stored;
}

void frmRT::WriteOption(const char* key, const std::string& value) {
  context_.store.SetOption(CurrentProfile(), key, value);
}

void frmRT::chkAuto_Click(Step& at) {
  at(1);
  const std::int16_t value = chkAuto().Value();
  if (value == 0 || value == 1) WriteOption(kEnableKey, std::to_string(value));
}

void frmRT::txtInterval_Change(Step& at) {
  at(1);
  const std::string text(TrimSpaces(txtInterval().Text()));
  if (IsNumeric(text)) {
    WriteOption(kIntervalKey, text);
  } else {
    at(2);
    txtInterval().SetText(context_.store.ReadOption(CurrentProfile(), kIntervalKey));
  }
}

}  // namespace rotacasts
