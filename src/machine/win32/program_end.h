// The end of the program that the system asks for.
#pragma once

#include <functional>

namespace rotacasts::host {

/// From when it is made, `end` is called for Ctrl-C and Ctrl-Break, when the console is closed, the
/// person logs off or the machine shuts down, and by AskToEnd; on a thread of the system. `end` has
/// the program end. Only one may be made.
class ProgramEndHandler {
 public:
  explicit ProgramEndHandler(std::function<void()> end);
  ProgramEndHandler(const ProgramEndHandler&) = delete;
  ProgramEndHandler& operator=(const ProgramEndHandler&) = delete;
};

/// Has the program end, or end as soon as it has a handler. From any thread.
void AskToEnd();

/// From now on the program stays when somebody logs off, as a service does.
void StayAtLogoff();

}  // namespace rotacasts::host
