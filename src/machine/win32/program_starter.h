// Starts programs for the event loop.
#pragma once

#include <chrono>
#include <memory>
#include <vector>

#include "machine/program_runner.h"
#include "machine/win32/event_loop.h"

namespace rotacasts::host {

/// Runs programs with a time limit, each in a job object, so that it ends with its children, and
/// with this process. The destructor ends those that still run.
class ProgramStarter final : public ProgramRunner {
 public:
  explicit ProgramStarter(EventLoop& loop, std::chrono::milliseconds timeLimit = kTimeLimit)
      : queue_(loop.Queue()), timeLimit_(timeLimit) {}
  ~ProgramStarter() override;
  ProgramStarter(const ProgramStarter&) = delete;
  ProgramStarter& operator=(const ProgramStarter&) = delete;

  /// Errors: also 5 for a batch file.
  void Start(const std::vector<std::string>& command,
             std::function<void(const ProgramEnd& end)> onEnd) override;

  static constexpr auto kTimeLimit = std::chrono::seconds(10);

 private:
  struct Child;
  struct Waiter;

  const std::shared_ptr<WorkQueue> queue_;
  const std::chrono::milliseconds timeLimit_;
  std::vector<std::shared_ptr<Child>> running_;
};

}  // namespace rotacasts::host
