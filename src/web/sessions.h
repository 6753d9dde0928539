// Who is signed in, and how often a stranger may try.
#pragma once

#include <chrono>
#include <map>
#include <optional>
#include <string>

#include "web/admins.h"

namespace rotacasts::host::web {

using Clock = std::chrono::steady_clock;

/// Sessions are kept in memory. They end with the host, after twelve hours, or as soon as the
/// person is removed, gets another password or may do something else.
class Sessions {
 public:
  static constexpr std::chrono::hours kLength{12};

  /// Starts a session; returns its token, 32 random bytes in hexadecimal.
  std::string Begin(const Admin& admin, Clock::time_point now = Clock::now());
  /// The token's person, one of `all`; nullopt if the session has ended.
  std::optional<Admin> Find(const std::string& token, const std::vector<Admin>& all,
                            Clock::time_point now = Clock::now());
  void End(const std::string& token) { sessions_.erase(token); }

 private:
  struct Session {
    Admin admin;
    Clock::time_point end;
  };
  std::map<std::string, Session> sessions_;
};

/// Slows down failing sign-ins: after three failures an address waits 1 s, then 2, 4, ... up to 30
/// s. Other addresses do not wait. Failures are forgotten after 15 minutes without one.
class SignInBrake {
 public:
  /// How long the address must wait before its next attempt; zero if it need not.
  std::chrono::seconds WaitOf(const std::string& address, Clock::time_point now = Clock::now());
  /// Counts an attempt, as a failure unless Succeeded follows.
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
