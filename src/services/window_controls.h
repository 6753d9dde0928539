// The controls of the settings window that other rooms read and set.
#pragma once

#include "forms/control.h"

namespace rotacasts {

/// Access to the one settings window's controls. Touching one creates the window, hidden, if there
/// is none; a result is good until the caller next lets others run.
class WindowControls {
 public:
  virtual ~WindowControls() = default;
  virtual forms::ListBox& lstMessages() = 0;
  virtual forms::CheckBox& chkAuto() = 0;
  virtual forms::TextBox& txtInterval() = 0;
};

}  // namespace rotacasts
