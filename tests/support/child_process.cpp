#include "support/child_process.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <stdexcept>
#include <utility>

namespace rotacasts::testing {

ChildProcess::ChildProcess(const std::vector<std::string>& command) {
  int toChild[2];
  int fromChild[2];
  if (::pipe2(toChild, O_CLOEXEC) != 0 || ::pipe2(fromChild, O_CLOEXEC) != 0) {
    throw std::runtime_error("no pipe");
  }
  std::vector<char*> arguments;
  for (const std::string& word : command) arguments.push_back(const_cast<char*>(word.c_str()));
  arguments.push_back(nullptr);
  process_ = ::fork();
  if (process_ == 0) {
    ::prctl(PR_SET_PDEATHSIG, SIGKILL);
    ::dup2(toChild[0], STDIN_FILENO);
    ::dup2(fromChild[1], STDOUT_FILENO);
    ::dup2(fromChild[1], STDERR_FILENO);
    ::execv(arguments[0], arguments.data());
    ::_exit(127);
  }
  ::close(toChild[0]);
  ::close(fromChild[1]);
  input_ = toChild[1];
  output_ = fromChild[0];
}

ChildProcess::~ChildProcess() {
  if (process_ > 0) Wait(SIGKILL);
  if (input_ >= 0) ::close(input_);
  if (output_ >= 0) ::close(output_);
}

void ChildProcess::Write(const std::string& bytes) {
  if (::write(input_, bytes.data(), bytes.size()) < 0)
    throw std::runtime_error("program has ended");
}

void ChildProcess::EndInput(const std::string& bytes) {
  Write(bytes);
  ::close(std::exchange(input_, -1));
}

void ChildProcess::CloseOutput() {
  ::close(std::exchange(output_, -1));
}

std::optional<std::string> ChildProcess::ReadLine() {
  for (;;) {
    const auto end = buffer_.find('\n');
    if (end != buffer_.npos) {
      std::string line = buffer_.substr(0, end);
      buffer_.erase(0, end + 1);
      return line;
    }
    pollfd source{output_, POLLIN, 0};
    char bytes[4096];
    if (::poll(&source, 1, 10000) <= 0) return std::nullopt;
    const ssize_t count = ::read(output_, bytes, sizeof bytes);
    if (count <= 0) return std::nullopt;
    buffer_.append(bytes, static_cast<std::size_t>(count));
  }
}

std::optional<std::string> ChildProcess::ReadUntil(const std::string& text) {
  const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(30);
  while (std::chrono::steady_clock::now() < end) {
    auto line = ReadLine();
    if (!line || line->find(text) != line->npos) return line;
  }
  return std::nullopt;
}

int ChildProcess::Wait(int signal) {
  if (signal != 0) ::kill(process_, signal);
  int status = 0;
  ::waitpid(process_, &status, 0);
  process_ = -1;
  return WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
}

}  // namespace rotacasts::testing
