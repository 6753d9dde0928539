// Reading another process's memory, in turns.

#include <arpa/inet.h>
#include <fcntl.h>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstring>
#include <list>

#include "siblings/game_processes.h"
#include "siblings/read_ahead.h"
#include "support/fake_host.h"

namespace rotacasts::host {
namespace {

constexpr std::int32_t kPage = 4096;
constexpr std::int32_t kLow = 0x30000000;
constexpr std::int32_t kEnd = kLow + kPage;

/// A page at a 32-bit address.
struct LowPage {
  explicit LowPage(std::intptr_t address)
      : bytes(static_cast<char*>(
            ::mmap(reinterpret_cast<void*>(address), kPage, PROT_READ | PROT_WRITE,
                   MAP_PRIVATE | MAP_ANONYMOUS | MAP_FIXED_NOREPLACE, -1, 0))) {}
  ~LowPage() { ::munmap(bytes, kPage); }
  char* const bytes;
};

class GameProcessesTest : public ::testing::Test {
 protected:
  std::int32_t Long(std::int32_t address) { return processes.ReadLong(self, address); }
  std::string Text(std::int32_t address) { return processes.ReadBytes(self, address); }
  std::list<LowPage> pages;
  LowPage& first = pages.emplace_back(kLow);
  GameProcesses processes;
  std::int32_t self = processes.Register({std::to_string(::getpid()), 0, "profile 1 (self)"});
};

TEST_F(GameProcessesTest, ReadsNumbersAndTextsUpToTheEndOfTheMap) {
  const std::int32_t value = -123456;
  std::memcpy(first.bytes + 8, &value, sizeof value);
  std::memset(first.bytes + 1000, 'x', 300);
  std::memcpy(first.bytes + kPage - 3, "end", 3);
  for (const bool inTurn : {false, true}) {
    if (inTurn) processes.BeginTurn();
    EXPECT_EQ(Long(kLow + 8), value);
    EXPECT_EQ(Text(kLow + 1000), std::string(255, 'x'));
    EXPECT_EQ(Text(kLow + 1290), std::string(10, 'x'));
    EXPECT_EQ(Text(kLow) + Text(kEnd - 3), "end");
    for (const std::int32_t address : {kEnd, kEnd - 2, 0, -4, -2}) {
      EXPECT_EQ(ErrorOf([&] { Long(address); }), 57) << address;
    }
    EXPECT_EQ(ErrorOf([&] { Text(kEnd); }), 57);
    EXPECT_EQ(ErrorOf([&] { processes.ReadLong(99, 0); }), 57);
  }
}

TEST_F(GameProcessesTest, ATurnAnswersFromItsPagesAndNoLaterOneDoes) {
  const auto put = [&](const char* text) { std::memcpy(first.bytes + kPage - 3, text, 3); };
  put("one");
  EXPECT_EQ(Text(kEnd - 3), "one");
  put("two");  // outside a turn nothing is kept
  for (const bool inTurn : {false, true}) {
    if (inTurn) processes.BeginTurn();
    EXPECT_EQ(Text(kEnd - 3), "two");
  }
  put("new");
  EXPECT_EQ(Text(kEnd - 3), "two");
  EXPECT_EQ(ErrorOf([&] { Long(kEnd); }), 57);  // a page that cannot be read is not kept
  for (std::size_t i = 1; i <= ReadAhead::kMostPages; ++i) {
    const std::int32_t next = kLow + static_cast<std::int32_t>(i) * kPage;
    std::memcpy(pages.emplace_back(next).bytes, "er", 2);
    EXPECT_EQ(Text(next), "er");
  }
  EXPECT_EQ(Text(kEnd - 3), "newer");  // newer pages have replaced it
  std::int32_t across = 0;
  std::memcpy(&across, "ewer", 4);
  EXPECT_EQ(Long(kEnd - 2), across);
  processes.EndTurn();
  pages.clear();
  processes.BeginTurn();
  EXPECT_EQ(ErrorOf([&] { Long(kLow + 8); }), 57);
}

/// A game server: a child process of this program, so with this program's name, that holds a letter
/// and receives at a port until it is told to give that up.
class ChildServer {
 public:
  ChildServer(LowPage& page, char letter, std::uint16_t wanted) {
    sockaddr_in address{AF_INET, htons(wanted), {htonl(INADDR_LOOPBACK)}, {}};
    socklen_t size = sizeof address;
    const int socket = ::socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    while (::bind(socket, reinterpret_cast<sockaddr*>(&address), size) != 0) ::usleep(1000);
    ::getsockname(socket, reinterpret_cast<sockaddr*>(&address), &size);
    port = ntohs(address.sin_port);
    int ends[2] = {-1, -1};
    EXPECT_EQ(::pipe2(ends, O_CLOEXEC), 0);
    page.bytes[0] = letter;
    id = ::fork();
    if (id == 0) {
      ::prctl(PR_SET_PDEATHSIG, SIGKILL);
      (void)!::read(ends[0], &letter, 1);
      ::close(socket);
      for (;;) ::pause();
    }
    ::close(socket);
    ::close(ends[0]);
    end_ = ends[1];
  }
  ~ChildServer() {
    ::kill(id, SIGKILL);
    ::waitpid(id, nullptr, 0);
    ::close(end_);
  }
  void GiveUpItsPort() const { EXPECT_EQ(::write(end_, "", 1), 1); }

  std::uint16_t port = 0;
  pid_t id = 0;

 private:
  int end_ = -1;
};

TEST_F(GameProcessesTest, ReadsWhoeverReceivesAtThePortAlsoWhenTheOneBeforeIsStillRunning) {
  for (const bool isAsked : {false, true}) {
    const ChildServer old(first, 'A', 0);
    const std::int32_t server = processes.Register({"host_tests", old.port, "profile 2"});
    std::string news;
    processes.onNews = [&](ServerNews, const std::string& words) { news += words; };
    auto now = GameProcesses::Clock::now();
    const auto read = [&] {
      processes.BeginTurn(now);
      const std::string text = processes.ReadBytes(server, kLow, WhenAway::ReadsAsZero);
      processes.EndTurn();
      return text;
    };
    EXPECT_EQ(read(), "A");
    old.GiveUpItsPort();
    const ChildServer successor(first, 'B', old.port);
    if (isAsked) {
      processes.LookAgain();
    } else {
      now += GameProcesses::kLookPeriod;
    }
    EXPECT_EQ(read(), "B");
    EXPECT_EQ(news, "profile 2: another process receives at the Target port " +
                        std::to_string(old.port) + " now, " + std::to_string(successor.id));
    successor.GiveUpItsPort();
    const ChildServer last(first, 'C', old.port);
    EXPECT_EQ(read(), "B");  // without a look
    now += GameProcesses::kLookPeriod;
    last.GiveUpItsPort();
    while (ReceivesUdp(old.port)) ::usleep(1000);
    EXPECT_EQ(ErrorOf([&] { read(); }), 57);
    EXPECT_NE(news.find("none receives at the Target port"), news.npos) << news;
  }
}

}  // namespace
}  // namespace rotacasts::host
