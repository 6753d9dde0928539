// What is left of a message list when the power goes at any moment of a change, when any call of
// the system fails, and when another program saves at that moment.

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <iostream>
#include <map>
#include <set>
#include <sstream>

#include "host/headless_plugin.h"
#include "host/server_host.h"
#include "support/fake_host.h"
#include "support/file_calls.h"
#include "support/host_folder.h"

namespace rotacasts::host {
namespace {

using Files = std::map<std::string, std::string>;  // contents by name

const std::string kPlace = "profiles/srv1/settings/";
const std::string kName = "Rotacasts.ini";
const std::string kBefore =
    "[Messages]\r\n1=a\r\n2=b\r\n3=c\r\n[Options]\r\nEnable=1\r\nInterval=3\r\n";

struct RunningHost {
  explicit RunningHost(const TestFolder& folder) : options{folder.Path()} {
    profiles.MakeWhatIsMissing();
    host.LoadEveryProfile();
  }
  const HostOptions options;
  std::ostringstream out{};
  HostProfiles profiles{options.folder, out};
  Troubles troubles{out};
  HeadlessPlugin plugin{profiles, troubles, options.minute};
  HeadlessSite site{};
  ServerHost host{profiles, plugin, site, options};
};

struct Change {
  const char* name;
  std::function<std::string(ServerHost&)> run;
};
const Change kChanges[] = {{"add", [](ServerHost& host) { return host.AddMessage(1, "d"); }},
                           {"delete", [](ServerHost& host) { return host.DeleteMessage(1, 1); }},
                           {"up", [](ServerHost& host) { return host.MoveMessage(1, 2, true); }},
                           {"down", [](ServerHost& host) { return host.MoveMessage(1, 0, false); }},
                           {"disable", [](ServerHost& host) { return host.SetSwitch(1, false); }},
                           {"interval", [](ServerHost& host) { return host.SetInterval(1, 5); }}};

/// A folder as the calls have changed it, and what of it is certainly on the disk.
class Disk {
 public:
  using State = std::pair<Files, bool>;  // and whether the change had been reported as done

  Disk(const Files& files, std::string folder) : folder_(std::move(folder)) {
    for (const auto& [name, bytes] : files) Make(names_, name, bytes);
  }

  /// Every state that a loss of power can leave before and after each of the calls.
  std::set<State> StatesOf(const std::vector<FileCall>& calls) {
    std::set<State> states;
    for (const FileCall& call : calls) {
      AddStates(false, states);
      Run(call);
    }
    AddStates(true, states);
    return states;
  }

 private:
  struct Inode {
    std::string flushed;
    std::string now;
  };
  using Names = std::map<std::string, std::size_t>;

  void Make(Names& names, const std::string& name, const std::string& bytes) {
    names[name] = inodes_.size();
    inodes_.push_back({bytes, bytes});
  }
  void Run(const FileCall& call) {
    if (call.name == "fsync" && call.path == folder_) {
      Names flushed = names_;
      for (const FileCall& late : unflushed_) Apply(late, flushed);
      names_ = flushed;
      unflushed_.clear();
    } else if (call.name == "fsync") {
      InodeOf(call).flushed = InodeOf(call).now;
    } else if (call.name == "write") {
      InodeOf(call).now += call.bytes;
    } else {
      if (call.name == "create") {
        made_[NameOf(call.path)] = inodes_.size();
        inodes_.emplace_back();
      }
      unflushed_.push_back(call);
    }
  }
  Inode& InodeOf(const FileCall& call) { return inodes_[made_.at(NameOf(call.path))]; }
  static std::string NameOf(const std::string& path) { return path.substr(path.rfind('/') + 1); }

  /// False if the names do not allow it, so that it has failed.
  bool Apply(const FileCall& call, Names& names) const {
    const std::string from = NameOf(call.path);
    const std::string to = NameOf(call.to);
    if (call.name == "create") return names.emplace(from, made_.at(from)).second;
    if (!names.contains(from)) return false;
    if (call.name == "unlink") return names.erase(from) > 0;
    if (call.name == "exchange" && !names.contains(to)) return false;
    if ((call.name == "link" || call.name == "move") && names.contains(to)) return false;
    const std::size_t old = std::exchange(names[to], names[from]);
    if (call.name == "exchange") names[from] = old;
    if (call.name == "rename" || call.name == "move") names.erase(from);
    return true;
  }

  /// Any of the names' changes since the last flush of the folder can be on the disk.
  void AddStates(bool isDone, std::set<State>& states) const {
    for (std::size_t chosen = 0; chosen < std::size_t{1} << unflushed_.size(); ++chosen) {
      Names names = names_;
      bool isPossible = true;
      for (std::size_t i = 0; i < unflushed_.size(); ++i) {
        if ((chosen >> i & 1U) != 0) isPossible = isPossible && Apply(unflushed_[i], names);
      }
      if (isPossible) AddContents({names.begin(), names.end()}, {}, isDone, states);
    }
  }
  /// What was not flushed can be old, empty, cut, zeros or complete.
  void AddContents(std::vector<std::pair<std::string, std::size_t>> left, Files files, bool isDone,
                   std::set<State>& states) const {
    if (left.empty()) return static_cast<void>(states.emplace(std::move(files), isDone));
    const auto [name, number] = left.back();
    left.pop_back();
    const auto& [flushed, now] = inodes_[number];
    const std::string zeros(now.size(), '\0');
    for (const std::string& bytes : {now, flushed, now.substr(0, now.size() / 2), zeros}) {
      files[name] = bytes;
      AddContents(left, files, isDone, states);
      if (now == flushed) return;
    }
  }

  const std::string folder_;
  std::vector<Inode> inodes_;
  Names names_;                              // on the disk
  std::map<std::string, std::size_t> made_;  // by the first name
  std::vector<FileCall> unflushed_;          // the names' changes
};

class PowerCutTest : public ::testing::TestWithParam<bool> {
 protected:
  PowerCutTest() {
    hasExchange = GetParam();
    Reset();
  }
  ~PowerCutTest() override { hasExchange = true; }

  void Reset(const Files& files = {{kName, kBefore}}) const {
    std::filesystem::remove_all(folder.File("profiles"));
    folder.AddProfile(1, "JO", "no-such-program", "4001");
    for (const auto& [name, bytes] : files) folder.Write(kPlace + name, bytes);
  }
  Files FilesNow() const {
    Files files;
    for (const auto& entry : std::filesystem::directory_iterator(folder.File(kPlace))) {
      const std::string name = entry.path().filename().string();
      files[name] = folder.Read(kPlace + name);
    }
    return files;
  }
  std::string List() const { return folder.Read(kPlace + kName); }
  std::string Log() const { return folder.ReadAll("profiles/srv1/adminlogs"); }

  /// The files before a change, and the calls by which it is made in this folder.
  std::pair<Files, std::vector<FileCall>> Watch(const Change& change, const std::string& place) {
    static const std::set<std::string> kRelevant = {"create", "write",    "fsync", "rename",
                                                    "move",   "exchange", "link",  "unlink"};
    Reset();
    RunningHost running(folder);
    const Files before = FilesNow();
    std::vector<FileCall> calls;
    const FileCalls watching([&](const FileCall& call) {
      const bool isRefused = !hasExchange && (call.name == "exchange" || call.name == "move");
      if (kRelevant.contains(call.name) && call.path.starts_with(place) && !isRefused) {
        calls.push_back(call);
      }
      return 0;
    });
    change.run(running.host);
    return {before, calls};
  }
  /// In how many of the states the host starts with another list, or leaves something beside it.
  std::ptrdiff_t CountBad(const std::set<Disk::State>& states, const Files& before,
                          const std::string& after) const {
    return std::ranges::count_if(states, [&](const Disk::State& state) {
      const auto& [files, isDone] = state;
      Reset(files);
      const RunningHost running(folder);
      const bool isGood = List() == after || (List() == kBefore && !isDone);
      return !isGood || FilesNow().size() != before.size() ||
             running.host.MessagesOf(1).messages.empty();
    });
  }

  TestFolder folder;
};
INSTANTIATE_TEST_SUITE_P(FileSystems, PowerCutTest, ::testing::Bool());

TEST_P(PowerCutTest, LeavesTheListAsItWasBeforeTheChangeOrAsItIsAfterIt) {
  const std::string place = folder.File(kPlace.substr(0, kPlace.size() - 1));
  std::size_t states = 0;
  for (const Change& change : kChanges) {
    const auto [before, calls] = Watch(change, place);
    const std::string after = List();
    const std::set<Disk::State> all = Disk(before, place).StatesOf(calls);
    states += all.size();
    EXPECT_EQ(CountBad(all, before, after), 0) << change.name;
    if (&change != kChanges) continue;
    for (std::size_t i = 0; i < calls.size(); ++i) {  // without any one of the flushes it fails
      if (calls[i].name != "fsync") continue;
      std::vector<FileCall> fewer = calls;
      fewer.erase(fewer.begin() + static_cast<std::ptrdiff_t>(i));
      EXPECT_GT(CountBad(Disk(before, place).StatesOf(fewer), before, after), 0) << calls[i].path;
    }
  }
  std::cout << states << " states after a loss of power\n";
  EXPECT_GT(states, 40U);
}

TEST_P(PowerCutTest, AFailingCallIsToldAsAFailureBeforeTheListIsReplacedAndAsDoneAfterwards) {
  int failed = 0;
  for (const Change& change : kChanges) {
    std::string after;
    bool hasFailed = true;
    for (int number = 0; hasFailed; ++number) {  // 0 for none
      Reset();
      RunningHost running(folder);
      int count = 0;
      hasFailed = number == 0;
      std::string which;
      std::string answer;
      bool isDone = true;
      try {
        const FileCalls failing([&](const FileCall& call) {
          if (++count != number) return 0;
          hasFailed = true;
          which = call.name + " " + call.path + " " + call.to;
          return call.name == "open" ? EMFILE : EIO;
        });
        answer = change.run(running.host);
      } catch (const RuntimeError& error) {
        answer = error.description;
        isDone = false;
      }
      if (number == 0) after = List();
      failed += hasFailed ? 1 : 0;
      const std::string told = std::string(change.name) + ", " + which + ": " + answer;
      EXPECT_EQ(List(), isDone ? after : kBefore) << told;
      const bool isTold = answer.find("\nbut ") != answer.npos;
      EXPECT_TRUE(!isDone || isTold || std::ranges::count(Log(), '\n') == 1) << told;
      running.profiles.MakeWhatIsMissing();  // as the next start does
      EXPECT_LE(FilesNow().size(), 2U) << told;
    }
  }
  EXPECT_GT(failed, 100);
}

TEST_P(PowerCutTest, WhatAnotherProgramSavesAtTheLastMomentIsNeverLost) {
  const std::string saved = "[Messages]\r\n1=saved\r\n[Options]\r\nEnable=1\r\nInterval=3\r\n";
  for (const char* const moment : {"create", "exchange", "rename", "move", "link"}) {
    for (const auto& [byRenaming, isKilled] :
         {std::pair(false, false), {false, true}, {true, false}, {true, true}}) {
      Reset();
      bool isSaved = false;
      {
        RunningHost running(folder);
        const FileCalls saving([&, renames = byRenaming, kills = isKilled](const FileCall& call) {
          if (isSaved) return kills && call.name != "close" ? EIO : 0;  // nothing changes any more
          const std::string& last = call.to.empty() ? call.path : call.to;
          if (call.name != moment || last.find(kName) == last.npos) return 0;
          isSaved = true;
          folder.Write(kPlace + (renames ? "new" : kName), saved);
          if (renames) {
            std::filesystem::rename(folder.File(kPlace + "new"), folder.File(kPlace + kName));
          }
          return 0;
        });
        ErrorOf([&] { running.host.AddMessage(1, "d"); });
      }
      const RunningHost again(folder);
      std::string all;
      for (const auto& [name, bytes] : FilesNow()) all += name + ": " + bytes;
      EXPECT_EQ(isSaved, all.find("1=saved") != all.npos) << moment << byRenaming << all;
    }
  }
}

}  // namespace
}  // namespace rotacasts::host
