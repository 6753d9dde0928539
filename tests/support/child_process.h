// A program started by a test: its input and output as pipes, ended with the test.
#pragma once

#include <csignal>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace rotacasts::testing {

class ChildProcess {
 public:
  /// Starts the program; what it prints, errors included, can be read line by line.
  explicit ChildProcess(const std::vector<std::string>& command);
  /// Kills the program if it still runs.
  ~ChildProcess();
  ChildProcess(const ChildProcess&) = delete;
  ChildProcess& operator=(const ChildProcess&) = delete;

  std::int64_t Id() const { return process_; }
  void WriteLine(const std::string& line) { Write(line + "\n"); }
  /// Writes the last of the program's input, as it stands, and ends it.
  void EndInput(const std::string& bytes);
  /// Reads no more, and lets the program know by its next write.
  void CloseOutput();
  /// The next line; nothing at the end of the output or after ten seconds without one.
  std::optional<std::string> ReadLine();
  /// Reads lines, for half a minute at most, until one holds the text; that line, or nothing.
  std::optional<std::string> ReadUntil(const std::string& text);
  /// Sends the signal, if any, and waits; the exit status, or minus the signal that ended it.
  int Wait(int signal = 0);

 private:
  void Write(const std::string& bytes);

  int process_ = -1;
  int input_ = -1;
  int output_ = -1;
  std::string buffer_;
};

}  // namespace rotacasts::testing
