#include "host/print_box.h"

#include <sstream>

#include "base/text.h"

namespace rotacasts::host {

void PrintBox(std::ostream& out, const std::string& text, const std::string& title) {
  out << "[" << title << "]\n";
  std::istringstream lines(ReplaceAll(text, "\r\n", "\n"));
  for (std::string line; std::getline(lines, line);) {
    if (!line.empty()) out << "  " << line << "\n";
  }
  out << std::flush;
}

}  // namespace rotacasts::host
