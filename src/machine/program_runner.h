// Starting programs without waiting for them.
#pragma once

#include <functional>
#include <string>
#include <vector>

namespace rotacasts::host {

class ProgramRunner {
 public:
  virtual ~ProgramRunner() = default;
  /// Starts a program, looked for in PATH unless its name holds a slash, with these arguments: no
  /// shell reads them. `onEnd` is called once, later: with an empty text when it has ended with
  /// status 0 and without a word on its standard error, otherwise with what was wrong. One that
  /// does not end in time is killed, with all that it has started. Error 57 when it cannot be
  /// started.
  virtual void Start(const std::vector<std::string>& command,
                     std::function<void(const std::string& problem)> onEnd) = 0;
};

}  // namespace rotacasts::host
