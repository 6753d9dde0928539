// Posts texts to the game servers' chat and remembers what became of them.
#pragma once

#include <cstdint>
#include <deque>
#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "base/local_time.h"
#include "machine/chat_socket.h"
#include "machine/program_runner.h"
#include "platform/components.h"

namespace rotacasts::host {

/// A text as it leaves the host: a blank in place of each control character, which would be a line
/// of its own to a program that says it, or a command to whatever shows it.
std::string AsPosted(std::string_view text);

/// One text that was posted, or was to be.
struct SentText {
  std::int64_t number = 0;  // counts up
  LocalTime time;           // when it was posted
  std::int32_t profile = 0;
  std::string text;  // as posted
  enum class Outcome { UnderWay, Sent, Failed };
  Outcome outcome = Outcome::UnderWay;
  std::string reason;  // why it failed, or what a program that has sent it warned of
};

/// Posts a text as one UTF-8 datagram to a port of 127.0.0.1, or through a program of the profile:
/// one text at a time, in order. Remembers each profile's latest texts.
class Chat {
 public:
  explicit Chat(const LocalClock& clock) : clock_(clock) {}

  /// The runner for the profiles' programs; null for none. Must outlive the last Post.
  void SetRunner(ProgramRunner* runner) { runner_ = runner; }
  /// Posts the profile's texts through a program from now on. `program` is its name and arguments,
  /// separated by blanks; the text is added as the last argument. If empty, uses datagrams.
  void SetProgram(std::int32_t profile, const std::string& program);

  /// Error 5 for a port that is none, 57 with the reason when the text cannot be posted. What fails
  /// only later is told by onEnd.
  void Post(std::int32_t profile, std::int32_t port, const std::string& words);

  /// The latest texts of a profile, the newest at the end. Empty only if nothing was posted.
  const std::deque<SentText>& LatestOf(std::int32_t profile) const;
  /// Those of all profiles.
  std::vector<SentText> Latest() const;
  /// Why the profile's latest text failed; empty if it went out, and before the first one.
  std::string FailureOf(std::int32_t profile) const;
  /// Called when a text was sent or has failed; LatestOf its profile contains it.
  std::function<void(const SentText&)> onEnd;

 private:
  struct Queue {
    std::vector<std::string> program;
    std::deque<std::int64_t> waiting;  // numbers of texts; the first is being posted
  };

  SentText& Remember(std::int32_t profile, const std::string& text);
  /// The text of that number; null if it was forgotten because many came after it.
  SentText* Find(std::int32_t profile, std::int64_t number);
  void Finish(std::int32_t profile, std::int64_t number, SentText::Outcome outcome,
              const std::string& reason);
  void StartFirst(std::int32_t profile);

  const LocalClock& clock_;
  ChatSocket socket_;
  ProgramRunner* runner_ = nullptr;
  std::map<std::int32_t, Queue> programs_;               // of the profiles that have one
  std::map<std::int32_t, std::deque<SentText>> latest_;  // of each profile
  std::int64_t lastNumber_ = 0;
};

}  // namespace rotacasts::host
