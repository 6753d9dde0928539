// Who is signed in, and how fast a stranger may try to.
#pragma once

#include <chrono>
#include <map>
#include <optional>
#include <string>

#include "web/admins.h"

namespace rotacasts::host::web {

using Clock = std::chrono::steady_clock;

/// Sessions live in memory and end with the host, after twelve hours, or as soon as the person is
/// taken out or has another password.
class Sessions {
 public:
  static constexpr std::chrono::hours kLength{12};

  /// The new session's token: 32 random bytes as text.
  std::string Begin(const Admin& admin, Clock::time_point now = Clock::now());
  /// The person as `all` describes them now; nothing for a token that is none any more.
  std::optional<Admin> Find(const std::string& token, const std::vector<Admin>& all,
                            Clock::time_point now = Clock::now());
  void End(const std::string& token) { sessions_.erase(token); }

 private:
  struct Session {
    std::string name;
    std::string password;
    Clock::time_point end;
  };
  std::map<std::string, Session> sessions_;
};

/// Slows down whoever fails to sign in: after three failures an address waits 1 s, then 2, 4, ...
/// up to 30 s. Others are not held up. A quarter of an hour of peace is forgiven.
class SignInBrake {
 public:
  /// How long the address has to wait before its next attempt; zero when it may go on.
  std::chrono::seconds WaitOf(const std::string& address, Clock::time_point now = Clock::now());
  /// Counts as a failure until it turns out to be none.
  void Attempted(const std::string& address, Clock::time_point now = Clock::now());
  void Succeeded(const std::string& address) { failures_.erase(address); }

 private:
  struct Failures {
    int count = 0;
    Clock::time_point last;
  };
  std::map<std::string, Failures> failures_;
};

}  // namespace rotacasts::host::web
