// The names that screen readers read for controls without text.
#pragma once

#include <oleacc.h>

#include <string_view>

#include "com/com_support.h"

namespace rotacasts::win32 {

/// Gives windows names for accessibility clients. Does nothing if the system has no such service.
class AccessibleNames {
 public:
  void Give(HWND window, std::string_view name);
  /// Removes the window's name. Call it before the window is destroyed.
  void Remove(HWND window);

 private:
  ComPtr<IAccPropServices> services_;
  bool wasTried_ = false;
};

}  // namespace rotacasts::win32
