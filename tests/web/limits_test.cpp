// The page's time limits, without waiting for them: sessions, failures, slow requests.

#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <unistd.h>

#include "base/runtime_error.h"
#include "machine/tcp.h"
#include "web/http_server.h"
#include "web/passwords.h"
#include "web/sessions.h"
#include "web/without_paths.h"

namespace rotacasts::host::web {
namespace {

using namespace std::chrono_literals;

TEST(Sessions, EndAfterTwelveHours) {
  const std::vector<Admin> all = {{"Anna", "hash", true, {}, {}}};
  Sessions sessions;
  const Clock::time_point begin;
  const std::string token = sessions.Begin(all[0], begin);
  EXPECT_TRUE(sessions.Find(token, all, begin + 12h - 1s));
  EXPECT_FALSE(sessions.Find(token, all, begin + 12h));
}

TEST(Sessions, OfOnePersonEndOnlyTheirOwnOldest) {
  const std::vector<Admin> all = {{"Anna", "hash", true, {}, {}}, {"Ben", "hash", true, {}, {}}};
  Sessions sessions;
  Clock::time_point now;
  std::vector<std::string> tokens = {sessions.Begin(all[0], now)};
  while (tokens.size() < 22) tokens.push_back(sessions.Begin(all[1], now += 1s));
  std::string found;
  for (const std::string& token : tokens) found += sessions.Find(token, all, now) ? '+' : '-';
  EXPECT_EQ(found, "+-" + std::string(20, '+'));
}

TEST(Clients, AreNamedByAProxyWithPortsAndAsNetworks) {
  for (const auto& [text, client] : {std::pair("1.2.3.4:5", "1.2.3.4"),
                                     {"1.2.3.4", "1.2.3.4"},
                                     {"2001:db8::1", "2001:db8::"},
                                     {"[2001:db8:0:0:5::9]:443", "2001:db8::"},
                                     {"::ffff:1.2.3.4", "1.2.3.4"},
                                     {"::1", "::1"},
                                     {"evil.example", "none"},
                                     {"", "none"}}) {
    EXPECT_EQ(ClientAddressIn(text).value_or("none"), client) << text;
  }
}

TEST(Words, LeaveOutWhereTheHostLives) {
  for (const auto& [words, shown] :
       {std::pair("/srv/a b/profiles/x/Rotacasts.ini:4: 1/2", "profiles/x/Rotacasts.ini:4: 1/2"),
        {"/srv/a b\\profiles\\x is read-only", "profiles\\x is read-only"},
        {"no \"/usr/bin/say\" (/tmp/x)", "no \"say\" (x)"}}) {
    EXPECT_EQ(WithoutPaths(words, "/srv/a b"), shown);
  }
}

/// No process can be started while the descriptors are used up.
TEST(PasswordChecks, KeepNoEntryThatNobodyStartsAndLetKnownOnesPass) {
  EventLoop loop;
  // The sanitizer opens a pipe when it first meets an exception or a class.
  EXPECT_THROW(ListenAddress("x"), RuntimeError);
  loop.Stop();
  PasswordChecks checks(loop);
  const std::string hash = HashPassword("correct horse");
  rlimit all{};
  ::getrlimit(RLIMIT_NOFILE, &all);
  const rlimit none{3, all.rlim_max};
  std::string order;
  using enum PasswordChecks::Lane;
  const auto check = [&](PasswordChecks::Lane lane, char who, const char* password,
                         const std::function<void()>& then = {}) {
    return checks.Check(lane, hash, password, [&, who, then](BackgroundCheck::Answer isRight) {
      order += {who, !isRight ? '?' : *isRight ? '+' : '-'};
      if (then) then();
    });
  };
  ::setrlimit(RLIMIT_NOFILE, &none);
  EXPECT_FALSE(check(Stranger, 'x', "correct horse"));
  ::setrlimit(RLIMIT_NOFILE, &all);
  check(Stranger, 'a', "correct horse", [&] {
    ::setrlimit(RLIMIT_NOFILE, &all);
    check(Stranger, 'c', "wrong");
    check(Stranger, 'd', "correct horse", [&] { loop.Stop(); });
    check(Known, 'e', "correct horse");
  });
  check(Stranger, 'b', "correct horse");
  check(Known, 'k', "correct horse");
  ::setrlimit(RLIMIT_NOFILE, &none);
  loop.Run();
  EXPECT_EQ(order, "k?b?a+c-e+d+");
}

TEST(SignInBrake, ForgivesTheNameThatSucceededAndWhatWasNotTried) {
  SignInBrake brake;
  const Clock::time_point now{1h};
  for (const char* name : {"Anna", "Eve", "anna", "Eve"}) brake.Attempted("one", name, now);
  EXPECT_EQ(brake.WaitOf("one", now), 2s);
  brake.Succeeded("one", "ANNA");
  EXPECT_EQ(brake.WaitOf("one", now), 0s);
  brake.Attempted("one", "Ben", now);
  EXPECT_EQ(brake.WaitOf("one", now), 1s) << "Eve's two failures were forgiven";
  brake.Untried("one", "Ben");
  EXPECT_EQ(brake.WaitOf("one", now), 0s);
}

TEST(SignInBrake, SlowsDownOneAddressMoreAndMore) {
  SignInBrake brake;
  Clock::time_point now{1h};
  for (const auto wait : {0s, 0s, 1s, 2s, 4s, 8s, 16s, 30s, 30s}) {
    brake.Attempted("one", "Anna", now);
    EXPECT_EQ(brake.WaitOf("one", now), wait);
    EXPECT_EQ(brake.WaitOf("one", now + wait), 0s);
    now += wait;
  }
  EXPECT_EQ(brake.WaitOf("other", now), 0s);
  brake.Attempted("other", "Anna", now + 15min);
  EXPECT_EQ(brake.WaitOf("one", now), 0s) << "a quarter of an hour is forgiven";
}

/// A client that sends a byte every 10 ms until it is cut off.
TEST(HttpServer, CutsOffARequestThatNeverEnds) {
  EventLoop loop;
  HttpServer server(
      loop, "127.0.0.1:0", [](const std::shared_ptr<Exchange>&) {}, 300ms);
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  address.sin_port = htons(server.Port());
  const int client = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
  ASSERT_EQ(::connect(client, reinterpret_cast<sockaddr*>(&address), sizeof address), 0);
  const auto begin = Clock::now();
  Clock::time_point next = begin;
  ssize_t heard = -1;
  loop.AddDeadline([&] { return next; },
                   [&] {
                     char byte = 0;
                     next += 10ms;
                     ::send(client, "x", 1, MSG_NOSIGNAL);
                     heard = ::recv(client, &byte, 1, MSG_DONTWAIT);
                     if (heard >= 0 || next > begin + 5s) loop.Stop();
                   });
  loop.Run();
  ::close(client);
  EXPECT_EQ(heard, 0) << "the connection has not been ended";
  EXPECT_GE(Clock::now(), begin + 300ms);
  EXPECT_LT(Clock::now(), begin + 3s);
}

}  // namespace
}  // namespace rotacasts::host::web
