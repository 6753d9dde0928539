// Who is signed in, and how often a stranger may try.
#pragma once

#include <chrono>
#include <map>
#include <optional>
#include <string>

#include "web/admins.h"

namespace rotacasts::host::web {

using Clock = std::chrono::steady_clock;

/// Sessions are kept in memory. They end with the host, after twelve hours, as soon as the person
/// is removed or gets another password, and when the person has begun twenty others since.
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
  /// Ends the oldest of the sessions that pass the filter.
  template <class Filter>
  void EndOldest(Filter&& filter);

  std::map<std::string, Session> sessions_;
};

/// Slows down failing sign-ins: after three failures a client waits 1 s, then 2, 4, ... up to 30 s.
/// Other clients do not wait. Failures are forgotten after 15 minutes without one.
class SignInBrake {
 public:
  /// How long the client must wait before its next attempt; zero if it need not.
  std::chrono::seconds WaitOf(const std::string& client, Clock::time_point now = Clock::now());
  /// Counts an attempt to sign in under a name, as a failure unless Succeeded or Untried follows.
  void Attempted(const std::string& client, const std::string& name,
                 Clock::time_point now = Clock::now());
  /// Forgives the client's failures under this name, not those under others.
  void Succeeded(const std::string& client, const std::string& name);
  /// Takes one attempt back, because the password could not be checked.
  void Untried(const std::string& client, const std::string& name);

 private:
  struct Failures {
    std::map<std::string, int> counts;  // by name
    Clock::time_point last;
    int Total() const;
  };
  void MakeRoomFor(const std::string& client, Clock::time_point now);

  std::map<std::string, Failures> failures_;
};

/// Recognises browsers from which somebody has signed in, by a cookie that only this host can make.
/// Strangers who keep failing cannot hold up such a browser.
class KnownBrowsers {
 public:
  KnownBrowsers();
  /// The cookie's value for a person; another one once the password is another.
  std::string ProofOf(const Admin& admin) const;
  bool IsProof(const std::string& text, const Admin& admin) const;

 private:
  std::string key_;  // of this run of the host
};

}  // namespace rotacasts::host::web
