// Posting texts to the game servers' chat, and what became of them.
#pragma once

#include <cstdint>
#include <deque>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include "base/local_time.h"
#include "machine/chat_socket.h"
#include "machine/program_runner.h"
#include "platform/components.h"

namespace rotacasts::host {

/// One text that was posted, or was to be.
struct SentText {
  std::int64_t number = 0;  // counts up
  LocalTime time;           // of its posting
  std::int32_t profile = 0;
  std::string text;
  enum class Outcome { UnderWay, Sent, Failed };
  Outcome outcome = Outcome::UnderWay;
  std::string reason;  // of a failure
};

/// Posts a text as one UTF-8 datagram to a port of 127.0.0.1, or has a program of the profile's say
/// it: one at a time, in order. Remembers the latest texts.
class Chat {
 public:
  explicit Chat(const LocalClock& clock) : clock_(clock) {}

  /// What starts the profiles' programs from now on; it outlives the last post. Null for nothing.
  void SetRunner(ProgramRunner* runner) { runner_ = runner; }
  /// Has the profile's texts said by a program: its name and arguments, separated by blanks, to
  /// which the text is added as the last one. Empty: by datagrams.
  void SetProgram(std::int32_t profile, const std::string& program);

  /// Error 5 for a port that is none, 57 with the reason when the text cannot be posted. What fails
  /// only later is told by onEnd.
  void Post(std::int32_t profile, std::int32_t port, const std::string& text);

  /// The latest texts, the last one at the end.
  const std::deque<SentText>& Latest() const { return latest_; }
  /// Called when a text has been sent or has failed; Latest holds it.
  std::function<void(const SentText&)> onEnd;

 private:
  struct Queue {
    std::vector<std::string> program;
    std::deque<std::int64_t> waiting;  // numbers of texts; the first one is under way
  };

  SentText& Remember(std::int32_t profile, const std::string& text);
  void Finish(std::int64_t number, const std::string& problem);
  void StartFirst(std::int32_t profile);

  const LocalClock& clock_;
  ChatSocket socket_;
  ProgramRunner* runner_ = nullptr;
  std::map<std::int32_t, Queue> programs_;  // of the profiles that have one
  std::deque<SentText> latest_;
  std::int64_t lastNumber_ = 0;
};

}  // namespace rotacasts::host
