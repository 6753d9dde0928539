// Passes the console's lines to the thread of the windows.
#pragma once

#include "com/windows_api.h"

namespace rotacasts::host {

/// Posts every line of the standard input to `window` from now on: as `message`, whose lParam is a
/// std::string* in UTF-8 that the receiver must delete. Stops at the end of the input or of the
/// window.
void PostConsoleLines(HWND window, UINT message);

}  // namespace rotacasts::host
