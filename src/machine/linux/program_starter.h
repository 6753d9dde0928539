// Starts programs from the event loop.
#pragma once

#include <chrono>
#include <cstdint>
#include <deque>
#include <map>
#include <memory>

#include "machine/linux/event_loop.h"
#include "machine/program_runner.h"

namespace rotacasts::host {

/// Runs programs with a time limit, no more at a time than OwnDescriptorShares() says; the others
/// wait. The destructor kills those that still run. `loop` must not run again after this object is
/// gone.
class ProgramStarter final : public ProgramRunner {
 public:
  explicit ProgramStarter(EventLoop& loop, std::chrono::milliseconds timeLimit = kTimeLimit);
  ~ProgramStarter() override;

  void Start(const std::vector<std::string>& command,
             std::function<void(const ProgramEnd& end)> onEnd) override;

  static constexpr auto kTimeLimit = std::chrono::seconds(10);

 private:
  struct Child;
  struct Waiting {
    std::vector<std::string> command;
    std::function<void(const ProgramEnd& end)> onEnd;
  };

  void Launch(Waiting wanted);
  void LaunchWaiting();
  std::optional<EventLoop::Clock::time_point> NextLimit() const;
  void KillLate();
  void Ended(int process);

  EventLoop& loop_;
  const std::chrono::milliseconds timeLimit_;
  std::map<int, std::unique_ptr<Child>> running_;  // by process id
  std::deque<Waiting> waiting_;
  std::int64_t started_ = 0;  // their number so far
};

}  // namespace rotacasts::host
