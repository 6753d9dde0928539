// The page's time limits, without waiting for them: sessions, failures, slow requests.

#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <unistd.h>

#include "base/runtime_error.h"
#include "web/http_server.h"
#include "web/microhttpd.h"
#include "web/sessions.h"

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

TEST(SignInBrake, SlowsDownOneAddressMoreAndMore) {
  SignInBrake brake;
  Clock::time_point now{1h};
  for (const auto wait : {0s, 0s, 1s, 2s, 4s, 8s, 16s, 30s, 30s}) {
    brake.Attempted("one", now);
    EXPECT_EQ(brake.WaitOf("one", now), wait);
    EXPECT_EQ(brake.WaitOf("one", now + wait), 0s);
    now += wait;
  }
  EXPECT_EQ(brake.WaitOf("other", now), 0s);
  brake.Attempted("other", now + 15min);
  EXPECT_EQ(brake.WaitOf("one", now), 0s) << "a quarter of an hour is forgiven";
}

TEST(HttpServer, SaysWhichLibraryTheMachineLacks) {
  try {
    Microhttpd("libnone.so.1");
    ADD_FAILURE() << "it has it";
  } catch (const RuntimeError& error) {
    EXPECT_NE(error.description.find("libnone.so.1"), std::string::npos) << error.description;
  }
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
