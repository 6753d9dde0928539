// Waiting for timers and for the person at the console.
#pragma once

#include <functional>
#include <string>

#include "forms/headless/timer_loop.h"

namespace rotacasts::host {

/// Runs timers as they fall due and hands every line of the standard input to `onLine`, the last
/// one even without a line feed, until that answers false or the program is asked to end (Ctrl-C,
/// SIGTERM). The end of the input leaves the timers running.
void RunEventLoop(headless::TimerLoop& timers,
                  const std::function<bool(const std::string&)>& onLine);

}  // namespace rotacasts::host
