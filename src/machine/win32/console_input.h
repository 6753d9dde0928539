// The console's lines, brought to the thread of the windows.
#pragma once

#include "com/windows_api.h"

namespace rotacasts::host {

/// From now on posts every line of the standard input to `window`: the message `message` with a
/// std::string* of UTF-8 as its lParam, which is the receiver's to delete. Posts nothing more after
/// the end of the input or of the window.
void PostConsoleLines(HWND window, UINT message);

}  // namespace rotacasts::host
