// Passwords: their Argon2id hashes, and checking one without blocking the host.
#pragma once

#include <array>
#include <cstddef>
#include <deque>
#include <functional>
#include <optional>
#include <string>

#include "background_check.h"

namespace rotacasts::host::web {

inline constexpr std::size_t kShortestPassword = 8;
inline constexpr std::size_t kLongestPassword = 256;

/// Hashes a password with a new salt. Takes 64 MiB and almost a tenth of a second.
std::string HashPassword(const std::string& password);
/// The hash of a random password; checking it costs as much as any other.
std::string HashOfNobody();

/// Whether the text is a hash that a password can be checked with.
bool IsPasswordHash(const std::string& text);

/// Checks passwords one after the other, each in the background, because the memory and time that
/// make guessing expensive would otherwise delay the ticks.
class PasswordChecks {
 public:
  /// Strangers wait in a lane of their own and let the others pass.
  enum class Lane { Known, Stranger };
  /// Whether the password is right; nullopt if the machine could not check it.
  using OnAnswer = std::function<void(BackgroundCheck::Answer)>;

  /// `loop` must outlive this. The end of this object ends the current check without an answer.
  explicit PasswordChecks(EventLoop& loop) : loop_(loop) {}

  /// Calls `onAnswer` in a later turn. Returns false, without a call, if too many checks are
  /// waiting in the lane, or if the machine cannot start one.
  bool Check(Lane lane, std::string hash, std::string password, OnAnswer onAnswer);

 private:
  struct Entry {
    std::string hash;
    std::string password;
    OnAnswer onAnswer;
  };
  /// Starts checking an entry. Returns false, and leaves the entry, if that is impossible.
  bool Start(Entry& entry);
  void StartNext();
  void Finish(BackgroundCheck::Answer isRight);

  EventLoop& loop_;
  std::array<std::deque<Entry>, 2> lanes_;
  std::optional<Entry> current_;
  std::optional<BackgroundCheck> check_;  // of the current entry
};

}  // namespace rotacasts::host::web
