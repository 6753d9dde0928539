// Prints the table of the console's commands for the documents, from the one that the console
// itself goes by.

#include <iostream>

#include "console/console.h"

namespace {

/// A cell ends at a bar.
std::string Escaped(std::string text) {
  for (std::size_t at = 0; (at = text.find('|', at)) != text.npos; at += 2)
    text.insert(at, 1, '\\');
  return text;
}

}  // namespace

int main() {
  std::cout << "| Command | What it does |\n|---|---|\n";
  for (const auto& [usage, help] : rotacasts::host::Console::Commands()) {
    std::cout << "| `" << Escaped(usage) << "` | " << Escaped(help) << " |\n";
  }
}
