// Popup menus of the platform, made from a menu of the model.
#pragma once

#include "com/windows_api.h"
#include "forms/form.h"

namespace rotacasts::win32 {

/// Shows the menu at the mouse pointer until it is closed, its items selectable with either mouse
/// button; a chosen item has been clicked then. `owner` receives the menu's messages.
void PopUpMenu(HWND owner, forms::MenuItem& menu);

}  // namespace rotacasts::win32
