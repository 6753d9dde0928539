// Starts programs without waiting for them.
#pragma once

#include <functional>
#include <string>
#include <vector>

namespace rotacasts::host {

/// How a program ended.
struct ProgramEnd {
  bool isDone = false;  // with status 0
  std::string words;    // the problem, or what a program that is done wrote as errors; may be empty
};

class ProgramRunner {
 public:
  virtual ~ProgramRunner() = default;
  /// Starts a program with these arguments, without a shell. A name without a slash is looked up in
  /// PATH. Later calls `onEnd` once. A program that exceeds the time limit is killed with whatever
  /// it has started. Errors: 57 if it cannot be started.
  virtual void Start(const std::vector<std::string>& command,
                     std::function<void(const ProgramEnd& end)> onEnd) = 0;
};

}  // namespace rotacasts::host
