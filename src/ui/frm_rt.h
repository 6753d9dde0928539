// The settings window: its controls and menus, and which handler each event runs.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>

#include "forms/form.h"
#include "store/settings_view.h"
#include "ui/handlers.h"
#include "ui/message_rows.h"

namespace rotacasts {

/// The plugin's only window.
class frmRT final : public forms::Form, public BroadcastSettings {
 public:
  static constexpr const char* kAddButton = "cmdAdd";
  static constexpr const char* kAddPicture = "cmdAddImg";

  explicit frmRT(const SettingsWindowContext& context);

  /// Refills the window from the current window profile's message file and writes both options
  /// back. Reported under "Form_Reload".
  void Form_Reload();
  /// The next filling of the list begins at its first row if it is not this profile that was shown.
  void BeginAtTheTopOf(std::int32_t profile);
  const Handlers& GetHandlers() const { return handlers_; }

  MessageRows& Messages() { return *messages_; }
  forms::ListBox& lstMessages() const { return Get<forms::ListBox>("lstMessages"); }
  forms::CheckBox& chkAuto() const { return Get<forms::CheckBox>("chkAuto"); }
  forms::TextBox& txtInterval() const { return Get<forms::TextBox>("txtInterval"); }
  forms::TextBox& txtMessage() const { return Get<forms::TextBox>("txtMessage"); }

  bool IsLoaded() const override { return Form::IsLoaded(); }
  std::int16_t Switch() const override { return chkAuto().Value(); }
  std::string Interval() const override { return txtInterval().Text(); }

 protected:
  void OnLoad() override;
  void MakeMenus() override;

 private:
  using Handler = void (Handlers::*)(const Handling&) const;
  using MouseHandler = void (Handlers::*)(const Handling&, const forms::MouseEvent&) const;
  /// An event's function: runs the handler under the procedure's name.
  std::function<void()> Handled(std::string_view procedure, Handler handler);
  std::function<void(const forms::MouseEvent&)> Handled(std::string_view procedure,
                                                        MouseHandler handler);
  void Form_Load();
  void WireEvents();

  const Handlers handlers_;
  ErrorHandler& errors_;
  std::unique_ptr<MessageRows> messages_;
  std::int32_t reloadedProfile_ = 0;  // the last that was shown
};

}  // namespace rotacasts
