// The rows of the window's list: what each shows, and which message of the file it stands for.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "forms/form.h"
#include "store/message_section.h"

namespace rotacasts {

/// A row: the first 60 characters of its message, and the key that the message has in the file.
struct MessageRow {
  std::string text;
  std::int32_t key = 0;
  bool operator==(const MessageRow&) const = default;
};

/// The row for a line of the message section, which is used up; nothing for a line that is not
/// listed. Raises what the line's splitting raises, with the line quoted, and error 13 for a key
/// that is no number.
std::optional<MessageRow> RowOf(MessageSection& section, std::string& line);

/// The list box of the settings window, with the keys of its rows. The list's item data is the key
/// that a row was listed with and goes with its text; after a move that is another row's key.
class MessageRows {
 public:
  /// The list outlives the rows.
  explicit MessageRows(forms::ListBox& list) : list_(list) {}

  /// Shows these rows and no others, the uppermost one staying where it was. The list is hidden
  /// meanwhile, so that it is drawn once and not once per item.
  void Fill(std::vector<MessageRow> rows);
  /// How often it has been filled.
  int Fillings() const { return fillings_; }
  /// The next filling is shown from its first row on.
  void BeginAtTheTop();

  const std::vector<MessageRow>& All() const { return rows_; }
  /// Exchanges two rows, item data included, after the file has been written in the rows' order.
  void Exchange(std::int32_t first, std::int32_t second);

 private:
  forms::ListBox& list_;
  std::vector<MessageRow> rows_;
  int fillings_ = 0;
};

/// For each row, the place of its message among the entries of the file; each place once.
using Places = std::vector<std::optional<std::size_t>>;
/// A row stands for the message under its key, if that reads as the row shows; if something has
/// changed meanwhile, for the only message that does; for none where more than one can be meant.
Places PlacesOf(const std::vector<MessageRow>& rows, const MessageEntries& entries);

/// The whole messages in the order of these places. Messages that no row stands for follow in their
/// order, so none is lost.
std::vector<std::string> InOrder(const Places& places, const MessageEntries& entries);

}  // namespace rotacasts
