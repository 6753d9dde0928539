// Tables of plain text.
#pragma once

#include <ostream>
#include <string>
#include <utility>
#include <vector>

namespace rotacasts::host {

/// Columns of text, each as wide as its widest cell.
class TextTable {
 public:
  explicit TextTable(std::vector<std::string> headings) { Add(std::move(headings)); }
  void Add(std::vector<std::string> row) { rows_.push_back(std::move(row)); }
  void Print(std::ostream& out) const;

 private:
  std::vector<std::vector<std::string>> rows_;
};

}  // namespace rotacasts::host
