// Passwords: their Argon2id hashes, and checking one without blocking the host.
#pragma once

#include <cstddef>
#include <deque>
#include <functional>
#include <optional>
#include <string>

#include "machine/linux/background_check.h"

namespace rotacasts::host::web {

inline constexpr std::size_t kShortestPassword = 8;
inline constexpr std::size_t kLongestPassword = 256;

/// Hashes a password with a new salt. Takes 64 MiB and almost a tenth of a second.
std::string HashPassword(const std::string& password);
/// The hash of a random password; checking it costs as much as any other.
std::string HashOfNobody();

/// Checks passwords one after the other, each in the background, because the memory and time that
/// make guessing expensive would otherwise delay the ticks.
class PasswordChecks {
 public:
  /// `loop` must outlive this. The end of this object ends the current check without an answer.
  explicit PasswordChecks(EventLoop& loop) : loop_(loop) {}

  using OnAnswer = std::function<void(BackgroundCheck::Answer isRight)>;
  /// Calls `onAnswer` in this turn or a later one, without an answer if the check was not possible
  /// at that moment. Returns false, without a call, if too many checks are waiting.
  bool Check(std::string hash, std::string password, OnAnswer onAnswer);

 private:
  struct Waiting {
    std::string hash;
    std::string password;
    OnAnswer onAnswer;
  };
  void StartFirst();
  void Finish(BackgroundCheck::Answer isRight);

  EventLoop& loop_;
  std::deque<Waiting> waiting_;  // the first one is being checked
  std::optional<BackgroundCheck> current_;
};

}  // namespace rotacasts::host::web
