// Changes of the message file by somebody who has seen a list of it, which can be stale.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "store/message_file.h"

namespace rotacasts {

/// A message as a list shows it.
struct ListedMessage {
  std::string text;            // its first 60 characters
  std::int32_t keyInFile = 0;  // the key that the message had in the file when it was last known
  bool operator==(const ListedMessage&) const = default;
};

/// Exchanges two messages of the list in the file and gives the file's messages the keys 1 to n:
/// those of the list in its order, then all others in theirs, each whole. Does nothing if the file
/// does not hold both. Returns true if it holds every message of the list, which then needs no
/// refilling. Raises what fails.
bool ExchangeListed(MessageFile& file, std::vector<ListedMessage> list, std::size_t first,
                    std::size_t second);

/// Removes a message of the list from the file; does nothing if the file does not hold it. Returns
/// false if it could not be removed. Raises what fails otherwise. `message` is a copy because the
/// list can be refilled inside each call.
bool RemoveListed(MessageFile& file, ListedMessage message);

}  // namespace rotacasts
