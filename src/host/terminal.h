// What people read on their terminal: plain text, tables, message boxes, and what is wrong in words
// that name the way out.
#pragma once

#include <ostream>
#include <streambuf>
#include <string>
#include <vector>

#include "base/runtime_error.h"

namespace rotacasts::host {

/// Passes UTF-8 text on to another stream with "?" for each control character but the line feed,
/// those of two bytes (U+0080 to U+009F) included: a message may hold a terminal's escape sequence.
class PlainOutput final : private std::streambuf, public std::ostream {
 public:
  explicit PlainOutput(std::ostream& target)
      : std::ostream(static_cast<std::streambuf*>(this)), target_(target) {}

 private:
  int overflow(int character) override;
  int sync() override;

  std::ostream& target_;
  bool holdsLead_ = false;  // the first byte of what may become a control character
};

/// Columns of text, each as wide as its widest cell.
class TextTable {
 public:
  explicit TextTable(std::vector<std::string> headings) { Add(std::move(headings)); }
  void Add(std::vector<std::string> row) { rows_.push_back(std::move(row)); }
  void Print(std::ostream& out) const;

 private:
  std::vector<std::vector<std::string>> rows_;
};

/// Prints a message box where there is no screen: its title, its lines without the blank ones.
void PrintBox(std::ostream& out, const std::string& text, const std::string& title);

/// Error 5 with nothing but these words, which are for the person at the console: they name the
/// thing and the way out.
inline RuntimeError Complaint(std::string words) {
  return {static_cast<std::int32_t>(ErrorNumber::InvalidProcedureCall), std::move(words)};
}

}  // namespace rotacasts::host
