// The rows of the window's list.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "forms/form.h"
#include "store/listed_messages.h"

namespace rotacasts {

/// The row for a line of the message section, which is used up; nothing for a line that is not
/// listed. Raises what the line's splitting raises, with the line quoted, and error 13 for a key
/// that is no number.
std::optional<ListedMessage> RowOf(MessageSection& section, std::string& line);

/// The list box of the settings window, with what each row stands for. A row has two keys: the key
/// that it was listed with is the list's item data and goes with the text, and the key in the file
/// is that of the row's place again after a move.
class MessageRows {
 public:
  /// The list outlives the rows.
  explicit MessageRows(forms::ListBox& list) : list_(list) {}

  /// Shows these rows and no others, the uppermost one staying where it was. The list is hidden
  /// meanwhile, so that it is drawn once and not once per item.
  void Fill(std::vector<ListedMessage> rows);
  /// How often it has been filled.
  int Fillings() const { return fillings_; }
  /// The next filling is shown from its first row on.
  void BeginAtTheTop();

  const std::vector<ListedMessage>& All() const { return rows_; }
  /// Exchanges two rows, listed keys included, after the file has been written in the rows' order.
  void Exchange(std::int32_t first, std::int32_t second);

 private:
  forms::ListBox& list_;
  std::vector<ListedMessage> rows_;
  int fillings_ = 0;
};

}  // namespace rotacasts
