// The names that screen readers read for controls that have no text of their own.
#pragma once

#include <oleacc.h>

#include <string_view>

#include "com/com_support.h"

namespace rotacasts::win32 {

/// Annotates windows with names for accessibility clients. Where the system has no such service
/// nothing happens.
class AccessibleNames {
 public:
  void Give(HWND window, std::string_view name);
  /// Takes a window's name back, before the window goes.
  void Take(HWND window);

 private:
  ComPtr<IAccPropServices> services_;
  bool wasTried_ = false;
};

}  // namespace rotacasts::win32
