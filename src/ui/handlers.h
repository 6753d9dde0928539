// What the settings window's controls and menus do, and filling it from a profile's message file.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>

#include "forms/control.h"
#include "services/error_reporter.h"
#include "store/message_file.h"
#include "ui/image_button.h"
#include "ui/message_rows.h"

namespace rotacasts {

class frmRT;
class SettingsWindow;
class ShownProfile;

/// What the settings window works with.
struct SettingsWindowContext {
  HostServices& services;
  ProfileTables& tables;
  ErrorReporter& reporter;
  MessageStore& store;
  const SettingsWindow& window;
};

/// One run of a handler: the step it is at, and the window as it shows the profile worked for. That
/// is the only way to the controls; once the window is gone or shows something else it ends the
/// handler.
struct Handling {
  Step& at;
  const ShownProfile& shown;
  frmRT& Window() const;
};

/// An item of the entry box's menu that edits its text.
struct EditingItem {
  std::string_view item;
  bool needsSelection;
  void (forms::TextBox::*edit)();
};
extern const EditingItem kEditingItems[5];

/// The handlers. Each runs under its own name and hands its errors to the reporter, so none leaves
/// an event. Nothing is kept of messages or options: the controls show them, the message file of
/// the current window profile stores them, and every change is written at once.
class Handlers {
 public:
  explicit Handlers(const SettingsWindowContext& context)
      : context_(context), buttons_(context.services.HostFolder()) {}

  /// Runs a handler under its name for the current window profile.
  void Run(std::string_view procedure, const std::function<void(const Handling&)>& body) const;
  const ImageButtons& Buttons() const { return buttons_; }

  /// Refills the window and writes both options back. A profile whose folder was refused has none.
  void Form_Reload(const Handling& h) const;
  /// Fills the list with the profile's messages. Reported under "LoadMessages".
  void LoadMessages(const ShownProfile& shown) const;

  void chkAuto_Click(const Handling& h) const;
  void txtInterval_Change(const Handling& h) const;
  void cmdAdd_MouseDown(const Handling& h, const forms::MouseEvent& event) const;
  void cmdAdd_MouseUp(const Handling& h, const forms::MouseEvent& event) const;
  void cmdAdd_PressLost(const Handling& h) const;
  void lstMessages_MouseDown(const Handling& h, const forms::MouseEvent& event) const;
  void txtMessage_MouseDown(const Handling& h, const forms::MouseEvent& event) const;
  void mnuUp_Click(const Handling& h) const { MoveSelected(h, -1); }
  void mnuDown_Click(const Handling& h) const { MoveSelected(h, 1); }
  void mnuDelete_Click(const Handling& h) const;
  /// Puts a placeholder into the entry box.
  void InsertToken(const Handling& h, std::string_view token) const;
  void Edit(const Handling& h, const EditingItem& item) const;

 private:
  void ShowOptions(const Handling& h, MessageFile& file) const;
  void Add(const Handling& h) const;
  void MoveSelected(const Handling& h, std::int16_t by) const;

  const SettingsWindowContext context_;
  const ImageButtons buttons_;
};

}  // namespace rotacasts
