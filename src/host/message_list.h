// A profile's messages and options as its message file holds them.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace rotacasts::host {

/// Read once, at the time of its making; UTF-8.
struct MessageList {
  struct Message {
    std::string key;
    std::string text;
  };
  /// Empty for a file that is missing. Raises what keeps the file from being read.
  explicit MessageList(std::string messageFile);

  /// The message's text. Error 5 when there is none at the position, and unless the keys of all
  /// messages are 1 to n: a remote operation takes a position for a key less one, and would act on
  /// another message than the one named.
  const std::string& TextAt(std::int32_t position) const;

  const std::string path;         // in the host suite's spelling
  std::vector<Message> messages;  // in file order
  std::string enable;             // empty when the file has none
  std::string interval;
};

}  // namespace rotacasts::host
