#include "ui/frm_rt.h"

#include <utility>

#include "ui/layout.h"

namespace rotacasts {

using forms::MouseEvent;

frmRT::frmRT(const SettingsWindowContext& context)
    : Form(context.services.Toolkit(), "frmRT",
           {layout::kClientWidth, layout::kClientHeight, layout::kFace, layout::kFontFace,
            layout::kFontSize}),
      handlers_(context),
      errors_(context.reporter) {
  layout::BuildControls(*this);
  messages_ = std::make_unique<MessageRows>(lstMessages());
}

void frmRT::OnLoad() {
  Form_Load();
  WireEvents();
}

void frmRT::Form_Load() {
  constexpr std::int32_t kNoProfile = 0;
  Guard(errors_, {"Form_Load", kNoProfile}, [&](Step& at) {
    ImageButtonArguments arguments{.bounds = layout::kAddButton,
                                   .caption = "Add",
                                   .window = *this,
                                   .name = kAddPicture,
                                   .container = Find("Frame2")};
    at(1);
    handlers_.Buttons().CreateButtonImage(arguments);
    at(2);
    arguments.name = kAddButton;
    handlers_.Buttons().CreateButtonLabel(arguments);
  });
}

void frmRT::Form_Reload() {
  Handled("Form_Reload", &Handlers::Form_Reload)();
}

void frmRT::BeginAtTheTopOf(std::int32_t profile) {
  if (std::exchange(reloadedProfile_, profile) != profile) messages_->BeginAtTheTop();
}

std::function<void()> frmRT::Handled(std::string_view procedure, Handler handler) {
  return [this, procedure, handler] {
    handlers_.Run(procedure, [&](const Handling& h) { (handlers_.*handler)(h); });
  };
}

std::function<void(const MouseEvent&)> frmRT::Handled(std::string_view procedure,
                                                      MouseHandler handler) {
  return [this, procedure, handler](const MouseEvent& event) {
    handlers_.Run(procedure, [&](const Handling& h) { (handlers_.*handler)(h, event); });
  };
}

void frmRT::WireEvents() {
  chkAuto().onClick = Handled("chkAuto_Click", &Handlers::chkAuto_Click);
  txtInterval().onChange = Handled("txtInterval_Change", &Handlers::txtInterval_Change);
  lstMessages().onMouseDown = Handled("lstMessagesClick", &Handlers::lstMessages_MouseDown);
  txtMessage().onMouseDown = Handled("txtMessage_MouseDown", &Handlers::txtMessage_MouseDown);
  // The picture's margin acts exactly like the caption on it. Building either can have failed.
  if (forms::Control* caption = Find(kAddButton)) {
    caption->onMouseDown = Handled("cmdAdd_MouseDown", &Handlers::cmdAdd_MouseDown);
    caption->onMouseUp = Handled("cmdAdd_MouseUp", &Handlers::cmdAdd_MouseUp);
    caption->onPressLost = Handled("cmdAdd_MouseUp", &Handlers::cmdAdd_PressLost);
  }
  if (forms::Control* picture = Find(kAddPicture)) {
    picture->onMouseDown = Handled("cmdAddImg_MouseDown", &Handlers::cmdAdd_MouseDown);
    picture->onMouseUp = Handled("cmdAddImg_MouseUp", &Handlers::cmdAdd_MouseUp);
    picture->onPressLost = Handled("cmdAddImg_MouseUp", &Handlers::cmdAdd_PressLost);
  }
}

void frmRT::MakeMenus() {
  layout::BuildMenus(*this);
  Menu("mnuUp").onClick = Handled("mnuUp", &Handlers::mnuUp_Click);
  Menu("mnuDown").onClick = Handled("mnuDown", &Handlers::mnuDown_Click);
  Menu("mnuDelete").onClick = Handled("mnuDelete_Click", &Handlers::mnuDelete_Click);
  const auto run = [this](std::string_view item, const auto& body) {
    handlers_.Run(std::string(item) + "_Click", body);
  };
  for (const layout::MenuRow& row : layout::Menus()) {
    if (row.token.empty()) continue;
    Menu(row.name).onClick = [this, run, &row] {
      run(row.name, [&](const Handling& h) { handlers_.InsertToken(h, row.token); });
    };
  }
  for (const EditingItem& item : kEditingItems) {
    Menu(item.item).onClick = [this, run, &item] {
      run(item.item, [&](const Handling& h) { handlers_.Edit(h, item); });
    };
  }
}

}  // namespace rotacasts
