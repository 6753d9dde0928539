// Giving the messages of a file new keys or new places without losing one on the way.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "store/message_section.h"

namespace rotacasts {

/// The key of a new message after these lines: one more than the number of lines or, in a
/// hand-edited section, than the highest key, so that no text is overwritten. After the highest
/// number there is, any that is unused.
std::string NextKey(const std::vector<std::string>& lines);

/// How many entries at the head of a section need no renumbering: they have the key of their
/// position and a text that stays, and no later line has one of their keys.
std::size_t CountInPlace(const MessageEntries& entries);

/// Whether every entry from `position` on gets a smaller key than it has, their keys rising from
/// line to line: then no new key is that of an entry whose turn is yet to come.
bool OnlyMoveUp(const MessageEntries& entries, std::size_t position);

/// The texts that are to stand in the file in place of these entries, or nothing to leave it alone.
using Arrange = std::function<std::optional<std::vector<std::string>>(const MessageEntries&)>;

/// The texts that a renumbering keeps: those that are not blank.
std::vector<std::string> TextsThatStay(const MessageEntries& entries);

/// Replaces every entry of the section by the texts that `arrange` makes of them, under the keys 1
/// to n. A text that stood in the file before and is among the new ones stands in it at every
/// moment: what changes is written under spare keys first, then in its place; the spare keys go
/// last. Returns whether there was anything to do. Raises what fails, with the old texts put back
/// where that can be done.
bool Replace(MessageSection& section, const Arrange& arrange);

}  // namespace rotacasts
