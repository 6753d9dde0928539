#include "machine/linux/background_check.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <new>
#include <utility>

namespace rotacasts::host {
namespace {

/// The work of the child process; never returns.
[[noreturn]] void AnswerInChild(const std::function<bool()>& question, int answer) {
  ::prctl(PR_SET_PDEATHSIG, SIGKILL);
  ::setpriority(PRIO_PROCESS, 0, 10);
  if (question()) (void)!::write(answer, "y", 1);
  ::_exit(0);
}

}  // namespace

BackgroundCheck::BackgroundCheck(EventLoop& loop, const std::function<bool()>& question,
                                 std::function<void(bool)> onAnswer)
    : loop_(loop), onAnswer_(std::move(onAnswer)) {
  int ends[2] = {-1, -1};
  if (::pipe2(ends, O_CLOEXEC) != 0) throw std::bad_alloc();
  process_ = ::fork();
  if (process_ == 0) AnswerInChild(question, ends[1]);
  ::close(ends[1]);
  answer_ = ends[0];
  loop_.Watch(answer_, POLLIN, [this](short) { Finish(); });
}

BackgroundCheck::~BackgroundCheck() {
  if (answer_ < 0) return;
  if (process_ > 0) ::kill(process_, SIGKILL);
  Close();
}

void BackgroundCheck::Finish() {
  char byte = 0;
  const bool isYes = ::read(answer_, &byte, 1) == 1;
  Close();
  const std::function<void(bool)> onAnswer = std::move(onAnswer_);
  onAnswer(isYes);
}

void BackgroundCheck::Close() {
  loop_.Unwatch(answer_);
  ::close(answer_);
  answer_ = -1;
  if (process_ > 0) ::waitpid(process_, nullptr, 0);
}

}  // namespace rotacasts::host
