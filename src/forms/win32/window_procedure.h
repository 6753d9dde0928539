// What every window procedure does around its body.
#pragma once

#include "com/entry.h"
#include "com/windows_api.h"

namespace rotacasts::win32 {

/// Runs a window procedure's body as an Entry. Never throws: an exception is answered with 0.
template <class Body>
LRESULT Contained(Body&& body) {
  const Entry entry;
  try {
    return body();
  } catch (...) {
    return 0;
  }
}

}  // namespace rotacasts::win32
