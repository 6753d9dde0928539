// Columns of text, each as wide as its widest cell.
#pragma once

#include <ostream>
#include <string>
#include <vector>

namespace rotacasts::host {

class TextTable {
 public:
  explicit TextTable(std::vector<std::string> headings) { Add(std::move(headings)); }
  void Add(std::vector<std::string> row) { rows_.push_back(std::move(row)); }
  void Print(std::ostream& out) const;

 private:
  std::vector<std::vector<std::string>> rows_;
};

}  // namespace rotacasts::host
