// The host's event loop, and the programs through which a profile's texts are said.

#include <sys/resource.h>
#include <sys/stat.h>

#include <csignal>

#include "machine/descriptor_shares.h"
#include "machine/linux/program_starter.h"
#include "siblings/chat.h"
#include "siblings/host_platform.h"
#include "support/fake_host.h"
#include "support/host_folder.h"

namespace rotacasts::host {
namespace {

TEST(EventLoopTest, ATurnLiesBetweenItsHooksAndAStopEndsItAtOnce) {
  EventLoop loop;
  std::string said;
  loop.AtTurnBegin([&] { said += '('; });
  loop.AtTurnEnd([&] { said += ')'; });
  auto due = std::optional(EventLoop::Clock::now());
  loop.AddDeadline([&] { return due; }, [&] { said += "due", due.reset(), ::raise(SIGHUP); });
  loop.onReload = [&] { said += "reload", loop.Stop(); };
  loop.Run();
  EXPECT_EQ(said, "(due)(reload");
}

TEST(EventLoopTest, NeitherWhatIsThrownNorASystemThatIsOutOfEverythingEndsIt) {
  EventLoop loop;
  rlimit limit{};
  ::getrlimit(RLIMIT_NOFILE, &limit);
  std::string told;
  int turns = 0;
  loop.onError = [&](const std::string& words) { told += words + "|", throw std::bad_alloc(); };
  loop.AddDeadline([] { return EventLoop::Clock::now(); }, [] { throw std::bad_alloc(); });
  loop.AddDeadline([] { return EventLoop::Clock::now(); },
                   [&] {
                     const rlimit none{0, limit.rlim_max};  // ppoll refuses even one descriptor
                     ::setrlimit(RLIMIT_NOFILE, &none);
                     if (++turns == 2) ::raise(SIGTERM);
                   });
  loop.Run();
  ::setrlimit(RLIMIT_NOFILE, &limit);
  EXPECT_EQ(turns, 2);
  const std::string both = "Out of memory|Device I/O error: cannot wait (Invalid argument)|";
  EXPECT_EQ(told, both + both);
}

TEST(EventLoopTest, ItsDescriptorsAreSharedSoThatFilesAreLeft) {
  EXPECT_EQ(ShareDescriptors(1024).connections, 600U);
  for (std::size_t limit = 32; limit < 70000; limit += 1 + limit / 8) {
    const DescriptorShares shares = ShareDescriptors(limit);
    const std::size_t all = shares.connections + 2 * shares.programs + shares.consoles;
    EXPECT_LE(all + std::min<std::size_t>(limit / 4, 64), limit) << limit;
    EXPECT_GT(shares.ofOneAddress, 0U);
    EXPECT_GT(shares.signIns * shares.programs * shares.consoles, 0U) << limit;
  }
}

TEST(ChatTest, ProgramsSayTheTextsInOrderAndNoneHoldsTheOthersUp) {
  const std::map<std::string, std::pair<const char*, const char*>> programs = {
      {"1", {"sleep 0.1; printf '%s|' \"$@\" >>$0.said", nullptr}},
      {"2", {"echo no such port >&2; exit 3", " ended with status 3: no such port"}},
      {"3",
       {"setsid sleep 60 & echo $! >$0.pid\n"
        "exec perl -e 'setpgrp(0, getpgrp(getppid)); sleep 60'",
        " took longer than 1 s and was ended"}},
      {"4", {"printf 'careful\\nnow' >&2", " said: careful now"}},
      {"5", {nullptr, " cannot be started (No such file or directory)"}}};
  const TestFolder folder;
  EventLoop loop;
  ProgramStarter starter(loop, std::chrono::seconds(1));
  SystemClock clock;
  Chat chat(clock);
  chat.SetRunner(&starter);
  for (const std::int32_t port : {0, -1, 65536}) {
    EXPECT_EQ(ErrorOf([&] { chat.Post(9, port, "x"); }), 5);
  }
  for (const auto& [name, program] : programs) {
    if (program.first != nullptr) folder.Write(name, std::string("#!/bin/sh\n") + program.first);
    ::chmod(folder.File(name).c_str(), 0700);
    chat.SetProgram(std::stoi(name), folder.File(name) + " -p  7 ");
  }
  std::string order;
  chat.onEnd = [&](const SentText& sent) {
    const std::string name = std::to_string(sent.profile);
    const char* const says = programs.at(name).second;
    const bool isSent = name == "1" || name == "4";  // the latter with a warning
    EXPECT_EQ(sent.outcome, isSent ? SentText::Outcome::Sent : SentText::Outcome::Failed) << name;
    EXPECT_EQ(sent.reason, says != nullptr ? folder.File(name) + says : "");
    order += name;
    if (order.size() == 6) loop.Stop();
  };
  chat.Post(3, 0, "x");
  chat.Post(1, 0, "$HOME\n`id`\u0085'ü'");
  for (const int profile : {1, 2, 4, 5}) chat.Post(profile, 0, "second");
  loop.Run();
  EXPECT_EQ(folder.Read("1.said"), "-p|7|$HOME `id` 'ü'|-p|7|second|");
  EXPECT_EQ(chat.Latest()[4].text, "$HOME `id` 'ü'");
  EXPECT_EQ(order.back(), '3') << order;
  std::error_code none;
  const std::string escaped = "/proc/" + std::to_string(std::stoi(folder.Read("3.pid"))) + "/exe";
  for (int i = 0; i < 500 && !std::filesystem::read_symlink(escaped, none).empty(); ++i) {
    ::usleep(1000);
  }
  EXPECT_TRUE(std::filesystem::read_symlink(escaped, none).empty()) << "it left its group";
  chat.onEnd = nullptr;
  for (int i = 0; i < 9; ++i) chat.Post(3, 0, "x");
  EXPECT_EQ(ErrorOf([&] { chat.Post(3, 0, "x"); }), 57);  // the program does not keep up
}

}  // namespace
}  // namespace rotacasts::host
