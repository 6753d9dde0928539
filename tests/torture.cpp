// Kills the stand-alone host, over and over, while it carries out a stream of changes, and counts
// what that has cost: texts that are gone, lists that are neither as before a change nor as after
// it, commands that were refused afterwards. All three are to be none.

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <random>
#include <thread>

#include "host/components/ini_text.h"
#include "support/child_process.h"
#include "support/fake_host.h"
#include "support/host_folder.h"

namespace rotacasts {
namespace {

using testing::ChildProcess;
using Texts = std::vector<std::string>;

constexpr const char* kFile = "profiles/srv1/settings/Rotacasts.ini";
constexpr std::size_t kMessages = 30;
constexpr std::size_t kCommandsARound = 30;

class Torture {
 public:
  Torture(std::string program, unsigned seed) : program_(std::move(program)), random_(seed) {
    for (std::size_t i = 0; i < kMessages; ++i) list_.push_back(NewText());
    folder_.AddProfile(1, "JO", "no-such-program", "4001", testing::MessageFileBytes(list_));
  }

  void Round() {
    states_ = {list_};
    std::string commands = Change();
    for (std::size_t i = 1; i < kCommandsARound; ++i) commands += "\n" + Change();
    ChildProcess host({program_, "run", "--host-folder", folder_.Path()});
    host.ReadUntil("profiles started");
    host.WriteLine(commands);
    std::this_thread::sleep_for(std::chrono::microseconds(Below(static_cast<std::size_t>(wait_))));
    host.Wait(SIGKILL);
    std::size_t told = 0;
    while (const auto line = host.ReadLine()) {
      const std::string verb = line->substr(0, line->find(' '));
      const bool isDone = verb == "added" || verb == "moved" || verb == "deleted:";
      ++(isDone ? told : refused);
      if (!isDone) std::printf("refused: %s\n", line->c_str());
    }
    wait_ = std::clamp(told < kCommandsARound / 6 ? wait_ * 13 / 10 : wait_ * 8 / 10, 1000, 400000);
    changes += told;
    Look(told);
  }

  int lost = 0;
  int half = 0;
  std::size_t refused = 0;
  std::size_t changes = 0;

 private:
  std::size_t Below(std::size_t limit) { return random_() % limit; }
  std::string NewText() { return "text " + std::to_string(++texts_); }

  /// A command, and what is to become of the list by it.
  std::string Change() {
    Texts next = states_.back();
    const std::size_t kind = next.size() < kMessages / 2 ? 0 : Below(4);
    const std::size_t upper = Below(next.size() - 1);
    const char* const verbs[] = {"add", "delete", "up", "down"};
    std::string command = verbs[kind] + std::string(" 1 ");
    if (kind == 0) {
      command += next.emplace_back(NewText());
    } else {
      command += std::to_string(kind == 2 ? upper + 1 : upper);
      const auto place = next.begin() + static_cast<std::ptrdiff_t>(upper);
      kind == 1 ? void(next.erase(place)) : std::iter_swap(place, place + 1);
    }
    states_.push_back(std::move(next));
    return command;
  }

  /// The list is as it was after one of the changes: one that was told of or a later one, and one
  /// that is in the log or the very next.
  void Look(std::size_t told) {
    Texts stored;
    const host::IniText ini(folder_.Read(kFile));
    bool isNumbered = true;
    for (const auto& line : ini.Lines("Messages")) {
      stored.emplace_back(line.value);
      isNumbered = isNumbered && line.key == std::to_string(stored.size());
    }
    const std::string log = folder_.ReadAll("profiles/srv1/adminlogs");
    const auto lines = static_cast<std::size_t>(std::ranges::count(log, '\n'));
    const std::size_t logged = lines - std::exchange(logged_, lines);
    for (std::size_t done = std::max(told, logged); isNumbered && done <= logged + 1; ++done) {
      if (done >= states_.size() || states_[done] != stored) continue;
      list_ = stored;
      return;
    }
    ++half;
    for (const std::string& text : states_[std::min(told + 1, states_.size() - 1)]) {
      if (std::ranges::count(stored, text) == 0) ++lost;
    }
    std::printf("after %zu changes the list is\n%s\n", told, folder_.Read(kFile).c_str());
    folder_.Write(kFile, testing::MessageFileBytes(list_));
  }

  const std::string program_;
  testing::HostFolder folder_;
  std::mt19937 random_;
  Texts list_;                 // as it was found after the last round
  std::vector<Texts> states_;  // that it goes through in this round
  std::size_t logged_ = 0;
  int texts_ = 0;
  int wait_ = 30000;  // microseconds, at most: so that a kill comes anywhere in the stream
};

}  // namespace
}  // namespace rotacasts

/// torture KILLS HOST-PROGRAM [SEED]
int main(int argc, char** argv) {
  if (argc < 3) return 2;
  const int kills = std::atoi(argv[1]);
  const unsigned seed =
      argc > 3 ? static_cast<unsigned>(std::atoi(argv[3])) : std::random_device()();
  std::printf("%d kills, seed %u\n", kills, seed);
  rotacasts::Torture torture(argv[2], seed);
  for (int kill = 0; kill < kills; ++kill) torture.Round();
  std::printf("kills %d, changes told of %zu: texts lost %d, half-changed %d, refused %zu\n", kills,
              torture.changes, torture.lost, torture.half, torture.refused);
  return torture.lost == 0 && torture.half == 0 && torture.refused == 0 && torture.changes > 0 ? 0
                                                                                               : 1;
}
