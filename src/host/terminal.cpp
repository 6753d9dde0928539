#include "host/terminal.h"

#include <algorithm>
#include <cstdio>
#include <sstream>

#include "base/text.h"

namespace rotacasts::host {
namespace {

constexpr int kLead = 0xC2;  // of U+0080 to U+00BF in UTF-8

bool IsControl(int byte) {
  return (byte < 0x20 && byte != '\n') || byte == 0x7F;
}

}  // namespace

int PlainOutput::overflow(int character) {
  if (character == EOF) return 0;
  const int byte = character & 0xFF;
  if (holdsLead_ && byte >= 0x80 && byte < 0xA0) {
    holdsLead_ = false;
    target_.put('?');
    return character;
  }
  if (holdsLead_) target_.put(static_cast<char>(kLead));
  holdsLead_ = byte == kLead;
  if (!holdsLead_) target_.put(IsControl(byte) ? '?' : static_cast<char>(byte));
  return target_ ? character : EOF;
}

int PlainOutput::sync() {
  target_.flush();
  return target_ ? 0 : -1;
}

void TextTable::Print(std::ostream& out) const {
  std::vector<std::size_t> widths(rows_.front().size());
  for (const auto& row : rows_) {
    for (std::size_t i = 0; i < row.size(); ++i) {
      widths[i] = std::max(widths[i], CountCharacters(row[i]));
    }
  }
  for (const auto& row : rows_) {
    std::string line;
    for (std::size_t i = 0; i < row.size(); ++i) {
      line += row[i];
      if (i + 1 < row.size()) line.append(widths[i] - CountCharacters(row[i]) + 2, ' ');
    }
    out << line << "\n";
  }
}

void PrintBox(std::ostream& out, const std::string& text, const std::string& title) {
  out << "[" << title << "]\n";
  std::istringstream lines(ReplaceAll(text, "\r\n", "\n"));
  for (std::string line; std::getline(lines, line);) {
    if (!line.empty()) out << "  " << line << "\n";
  }
  out << std::flush;
}

}  // namespace rotacasts::host
