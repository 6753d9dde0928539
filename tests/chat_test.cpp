// The host's event loop, and the programs through which a profile's texts are said.

#include <sys/stat.h>

#include <csignal>

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

TEST(ChatTest, ProgramsSayTheTextsInOrderAndNoneHoldsTheOthersUp) {
  const std::map<std::string, std::pair<const char*, const char*>> programs = {
      {"1", {"sleep 0.1; printf '%s|' \"$@\" >>$0.said", nullptr}},
      {"2", {"echo no such port >&2; exit 3", " ended with status 3: no such port"}},
      {"3", {"sleep 60 & wait", " took longer than 1 s and was ended"}},
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
  chat.onEnd = nullptr;
  for (int i = 0; i < 9; ++i) chat.Post(3, 0, "x");
  EXPECT_EQ(ErrorOf([&] { chat.Post(3, 0, "x"); }), 57);  // the program does not keep up
}

}  // namespace
}  // namespace rotacasts::host
