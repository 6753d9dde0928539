// Loading libmicrohttpd.
#pragma once

#include "machine/microhttpd.h"

namespace rotacasts::host {

/// Loads the library for the rest of the program's life. Errors: 53, with how to install it, if the
/// machine does not have it.
Microhttpd LoadMicrohttpd(const char* fileName);

}  // namespace rotacasts::host
