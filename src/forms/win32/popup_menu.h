// Platform popup menus, built from the model's menus.
#pragma once

#include "com/windows_api.h"
#include "forms/form.h"

namespace rotacasts::win32 {

/// Shows the menu at the mouse pointer and waits until it closes. Either mouse button chooses an
/// item, which is clicked before this returns. `owner` receives the menu's messages.
void PopUpMenu(HWND owner, forms::MenuItem& menu);

}  // namespace rotacasts::win32
