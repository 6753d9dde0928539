#include "terminal/hidden_input.h"

#include <termios.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <iostream>

namespace rotacasts::host {

/// A signal that stops or ends the program gives the terminal back first; when the program goes on,
/// it hides again.
struct HiddenInput::Parts {
  Parts() : isTerminal_(::tcgetattr(STDIN_FILENO, &before_) == 0) {
    if (!isTerminal_) return;
    quiet_ = before_;
    quiet_.c_lflag &= ~static_cast<tcflag_t>(ECHO);
    current_ = this;
    for (const int signal : kSignals) Handle(signal, GiveBack);
    Set(quiet_);
  }
  ~Parts() {
    if (!isTerminal_) return;
    Set(before_);
    for (const int signal : kSignals) Handle(signal, SIG_DFL);
    current_ = nullptr;
  }
  Parts(const Parts&) = delete;
  Parts& operator=(const Parts&) = delete;

  static constexpr int kSignals[] = {SIGTSTP, SIGINT, SIGTERM, SIGHUP, SIGQUIT};

  static void Handle(int signal, void (*handler)(int)) {
    struct sigaction action {};
    action.sa_handler = handler;
    action.sa_flags = SA_RESTART;
    ::sigaction(signal, &action, nullptr);
  }
  static void Set(const termios& mode) { ::tcsetattr(STDIN_FILENO, TCSANOW, &mode); }
  /// Calls only what a signal handler may call.
  static void GiveBack(int signal) {
    const int problem = errno;
    Set(current_->before_);
    if (signal == SIGTSTP) {
      ::raise(SIGSTOP);
      Set(current_->quiet_);
    } else {
      Handle(signal, SIG_DFL);
      ::raise(signal);  // as soon as this handler is over
    }
    errno = problem;
  }

  static inline const Parts* current_ = nullptr;
  termios before_{};
  termios quiet_{};
  const bool isTerminal_;
};

HiddenInput::HiddenInput() : parts_(std::make_unique<Parts>()) {}
HiddenInput::~HiddenInput() = default;

bool HiddenInput::IsTerminal() const {
  return parts_->isTerminal_;
}

std::string HiddenInput::Line() {
  std::string line;
  std::getline(std::cin, line);
  return line;
}

}  // namespace rotacasts::host
