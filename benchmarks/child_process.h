// A program that is measured or needed for it. Its input and output are pipes, and it ends with
// this one.
#pragma once

#include <fcntl.h>
#include <poll.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <cstdint>
#include <optional>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace rotacasts::bench {

class ChildProcess {
 public:
  /// Starts the program. Its output, including errors, can be read line by line.
  explicit ChildProcess(const std::vector<std::string>& command) {
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
  /// Kills the program if it still runs.
  ~ChildProcess() {
    if (process_ > 0) {
      ::kill(process_, SIGKILL);
      Wait();
    }
    for (const int end : {input_, output_}) ::close(end);
  }
  ChildProcess(const ChildProcess&) = delete;
  ChildProcess& operator=(const ChildProcess&) = delete;

  std::int64_t Id() const { return process_; }
  void WriteLine(const std::string& line) {
    const std::string bytes = line + "\n";
    if (::write(input_, bytes.data(), bytes.size()) < 0)
      throw std::runtime_error("program has ended");
  }
  /// Reads lines, for at most half a minute, until one contains the text. Returns that line;
  /// nullopt if there is none.
  std::optional<std::string> ReadUntil(const std::string& text) {
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(30);
    while (std::chrono::steady_clock::now() < end) {
      auto line = ReadLine();
      if (!line || line->find(text) != line->npos) return line;
    }
    return std::nullopt;
  }
  /// Waits until it ends.
  void Wait() { ::waitpid(std::exchange(process_, -1), nullptr, 0); }

 private:
  /// The next line; nullopt at the end of the output or after ten seconds without one.
  std::optional<std::string> ReadLine() {
    auto end = buffer_.find('\n');
    for (; end == buffer_.npos; end = buffer_.find('\n')) {
      pollfd source{output_, POLLIN, 0};
      char bytes[4096];
      if (::poll(&source, 1, 10000) <= 0) return std::nullopt;
      const ssize_t count = ::read(output_, bytes, sizeof bytes);
      if (count <= 0) return std::nullopt;
      buffer_.append(bytes, static_cast<std::size_t>(count));
    }
    std::string line = buffer_.substr(0, end);
    buffer_.erase(0, end + 1);
    return line;
  }

  int process_ = -1;
  int input_ = -1;
  int output_ = -1;
  std::string buffer_;
};

}  // namespace rotacasts::bench
