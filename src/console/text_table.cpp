#include "console/text_table.h"

#include <algorithm>

#include "base/text.h"

namespace rotacasts::host {

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

}  // namespace rotacasts::host
