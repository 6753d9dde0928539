// Whether somebody sits there. One implementation per platform.
#pragma once

namespace rotacasts::host {

/// Whether both standard input and output are a terminal: then a person can be asked.
bool IsOnTerminal();

}  // namespace rotacasts::host
