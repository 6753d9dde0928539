// A message box where there is no screen.
#pragma once

#include <ostream>
#include <string>

namespace rotacasts::host {

/// Prints a message box: its title, its lines without the blank ones.
void PrintBox(std::ostream& out, const std::string& text, const std::string& title);

}  // namespace rotacasts::host
