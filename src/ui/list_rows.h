// Which message of the file each row of the window's list stands for.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "forms/control.h"
#include "store/message_file.h"

namespace rotacasts {

/// For each row the index of the entry that it shows, each entry at most once; nothing for a row
/// whose message is no longer in the file. A row shows the first 60 characters of its message and
/// stands, in a list that is up to date, at its message's place; a remote move or a hand in the
/// file can leave the list behind, and then the text decides.
std::vector<std::optional<std::size_t>> MatchRows(const std::vector<forms::ListBox::Item>& rows,
                                                  const std::vector<MessageFile::Entry>& entries);

/// The whole messages in the order of the rows, each taken from the file; a row without an entry
/// gives its own text. Entries that no row shows follow in their order, so none is lost.
std::vector<std::string> WholeMessages(const std::vector<forms::ListBox::Item>& rows,
                                       const std::vector<MessageFile::Entry>& entries);

}  // namespace rotacasts
