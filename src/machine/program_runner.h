// Starts programs without waiting for them.
#pragma once

#include <functional>
#include <string>
#include <vector>

namespace rotacasts::host {

class ProgramRunner {
 public:
  virtual ~ProgramRunner() = default;
  /// Starts a program with these arguments, without a shell. A name without a slash is looked up in
  /// PATH. Later calls `onEnd` once: with an empty text if the program ended with status 0 and
  /// wrote no errors, else with a description of the problem. A program that exceeds the time limit
  /// is killed with its children. Errors: 57 if it cannot be started.
  virtual void Start(const std::vector<std::string>& command,
                     std::function<void(const std::string& problem)> onEnd) = 0;
};

}  // namespace rotacasts::host
