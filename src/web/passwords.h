// Passwords: their Argon2id hashes, and checking one without holding up the host.
#pragma once

#include <cstddef>
#include <deque>
#include <functional>
#include <string>

#include "machine/linux/event_loop.h"

namespace rotacasts::host::web {

inline constexpr std::size_t kShortestPassword = 8;
inline constexpr std::size_t kLongestPassword = 256;

/// With a new salt each time. Takes 64 MiB and a good part of a tenth of a second.
std::string HashPassword(const std::string& password);
/// The hash of a password that nobody knows, as costly to check as any other.
std::string HashOfNobody();

/// Checks passwords one after the other, each in a process of its own: the memory and the time that
/// make guessing dear would otherwise hold up the ticks.
class PasswordChecks {
 public:
  explicit PasswordChecks(EventLoop& loop) : loop_(loop) {}
  /// Ends the check under way; nobody is told any more.
  ~PasswordChecks();
  PasswordChecks(const PasswordChecks&) = delete;
  PasswordChecks& operator=(const PasswordChecks&) = delete;

  /// Has `onAnswer` called in a later turn. False, and no call, when too many are waiting.
  bool Check(std::string hash, std::string password, std::function<void(bool)> onAnswer);

 private:
  struct Waiting {
    std::string hash;
    std::string password;
    std::function<void(bool)> onAnswer;
  };
  void StartFirst();
  void Finish();

  EventLoop& loop_;
  std::deque<Waiting> waiting_;  // the first one is under way
  int process_ = -1;
  int answer_ = -1;  // a pipe's end: one byte if the password is right, none if not
};

}  // namespace rotacasts::host::web
