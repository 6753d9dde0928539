#include "machine/linux/background_check.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstring>
#include <utility>

#include "base/runtime_error.h"

namespace rotacasts::host {
namespace {

/// The work of the child process; never returns.
[[noreturn]] void AnswerInChild(const std::function<bool()>& question, int answer) {
  ::prctl(PR_SET_PDEATHSIG, SIGKILL);
  sigset_t none;
  sigemptyset(&none);
  ::sigprocmask(SIG_SETMASK, &none, nullptr);  // the event loop's signals would wait for ever
  ::setpriority(PRIO_PROCESS, 0, 10);
  (void)!::write(answer, question() ? "y" : "n", 1);
  ::_exit(0);
}

[[noreturn]] void RaiseNotStarted() {
  throw RuntimeError(ErrorNumber::DeviceIoError,
                     std::string("no process can be started (") + std::strerror(errno) + ")");
}

}  // namespace

BackgroundCheck::BackgroundCheck(EventLoop& loop, const std::function<bool()>& question,
                                 std::function<void(Answer)> onAnswer)
    : loop_(loop), onAnswer_(std::move(onAnswer)) {
  int ends[2] = {-1, -1};
  if (::pipe2(ends, O_CLOEXEC) != 0) RaiseNotStarted();
  process_ = ::fork();
  if (process_ == 0) AnswerInChild(question, ends[1]);
  const int problem = errno;
  ::close(ends[1]);
  if (process_ < 0) {
    ::close(ends[0]);
    errno = problem;
    RaiseNotStarted();
  }
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
  const bool isAnswered = ::read(answer_, &byte, 1) == 1;
  Close();
  const std::function<void(Answer)> onAnswer = std::move(onAnswer_);
  onAnswer(isAnswered ? Answer(byte == 'y') : std::nullopt);
}

void BackgroundCheck::Close() {
  loop_.Unwatch(answer_);
  ::close(answer_);
  answer_ = -1;
  if (process_ > 0) ::waitpid(process_, nullptr, 0);
}

}  // namespace rotacasts::host
