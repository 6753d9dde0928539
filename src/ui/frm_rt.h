// The settings window: its handlers, and filling it from a profile's message file.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>

#include "forms/form.h"
#include "services/error_reporter.h"
#include "store/message_file.h"
#include "ui/image_button.h"
#include "ui/message_rows.h"

namespace rotacasts {

/// What the settings window works with.
struct SettingsWindowContext {
  HostServices& services;
  ProfileTables& tables;
  ErrorReporter& reporter;
  MessageFile& store;
  /// The tick of a profile's timer element.
  std::function<void(std::int16_t)> onTick;
};

/// The plugin's only window. It keeps no copy of messages or options: its controls show them, the
/// message file of the current window profile stores them, and every change is written at once.
/// Each handler runs under its own name and hands its errors to the reporter, so none leaves an
/// event.
class frmRT final : public forms::Form {
 public:
  explicit frmRT(const SettingsWindowContext& context);

  /// Refills the window from the current window profile's message file and writes both options
  /// back. Reported under "Form_Reload".
  void Form_Reload();

  MessageRows& Messages() { return *messages_; }
  forms::ListBox& lstMessages() const { return Get<forms::ListBox>("lstMessages"); }
  forms::CheckBox& chkAuto() const { return Get<forms::CheckBox>("chkAuto"); }
  forms::TextBox& txtInterval() const { return Get<forms::TextBox>("txtInterval"); }
  forms::TextBox& txtMessage() const { return Get<forms::TextBox>("txtMessage"); }

 protected:
  void OnLoad() override;
  void MakeMenus() override;

 private:
  struct EditingItem;
  static const EditingItem kEditingItems[];
  using Handler = void (frmRT::*)(Step&);
  using MouseHandler = void (frmRT::*)(Step&, const forms::MouseEvent&);
  /// An event's function: runs the handler under the procedure's name.
  std::function<void()> Handled(std::string_view procedure, Handler handler);
  std::function<void(const forms::MouseEvent&)> Handled(std::string_view procedure,
                                                        MouseHandler handler);
  void WireEvents();
  /// Runs a handler under its name for the current window profile. While a handler calls a
  /// component or shows a box, the host may load another profile or unload the window; so a handler
  /// takes the profile and the rows once, when it begins, changes that profile's file only, and
  /// goes back to the controls only if the window still `Shows` it.
  void Run(std::string_view procedure, const std::function<void(Step&)>& body);

  void Form_Load(Step& at);
  void chkAuto_Click(Step& at);
  void txtInterval_Change(Step& at);
  void cmdAdd_MouseDown(Step& at, const forms::MouseEvent& event);
  void cmdAdd_MouseUp(Step& at, const forms::MouseEvent& event);
  void cmdAdd_PressLost(Step& at);
  void lstMessages_MouseDown(Step& at, const forms::MouseEvent& event);
  void txtMessage_MouseDown(Step& at, const forms::MouseEvent& event);
  void mnuUp_Click(Step& at) { MoveSelected(at, -1); }
  void mnuDown_Click(Step& at) { MoveSelected(at, 1); }
  void mnuDelete_Click(Step& at);

  /// The row of the list under a point in twips, or -1.
  std::int32_t ListIndexFromPoint(float X, float Y);
  void EnableListMenu();
  void MoveSelected(Step& at, std::int16_t by);
  /// Takes the message that the row stands for out of the file; false when it could not be removed.
  /// Nothing happens to a row that stands for none.
  bool Remove(std::int32_t profile, const MessageRow& row);
  void Edit(const EditingItem& item);
  void Add(Step& at);

  std::int32_t CurrentProfile() const { return context_.tables.currentWindowProfile; }
  bool Shows(std::int32_t profile) const { return IsLoaded() && profile == CurrentProfile(); }
  void WriteOption(std::int32_t profile, const char* key, const std::string& value);
  /// The stored option as the window shows it: the default for an empty one and for one outside 0
  /// to `highest`. Error 13 for one that is no number.
  std::string OptionToShow(std::int32_t profile, const char* key, double highest,
                           const char* defaultText);
  void ShowOptions(std::int32_t profile, Step& at);

  const SettingsWindowContext context_;
  const ImageButtons buttons_;
  std::unique_ptr<MessageRows> messages_;
  std::int32_t reloadedProfile_ = 0;  // the last that was shown
};

}  // namespace rotacasts
