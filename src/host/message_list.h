// A profile's messages and options, as its message file has them.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace rotacasts::host {

/// A copy of the file's contents, read by the constructor; UTF-8.
struct MessageList {
  struct Message {
    std::string key;
    std::string text;
    bool operator==(const Message&) const = default;
  };
  /// Empty if the file is missing. Errors: those of reading it.
  explicit MessageList(std::string messageFile);

  /// The message's text. Errors: 5 if there is none at the position, or if the keys are not 1 to n:
  /// remote operations take a position as key - 1 and would act on another message.
  const std::string& TextAt(std::int32_t position) const;

  const std::string path;         // in the host suite's form
  std::vector<Message> messages;  // in file order
  std::string enable;             // empty if the file has none
  std::string interval;
};

/// What keeps an option of a message file from being used, with its place and what to write there;
/// empty if nothing does. Errors: those of reading the file.
std::string OptionProblem(const std::string& messageFile);

}  // namespace rotacasts::host
