#include "machine/linux/program_starter.h"

#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <string_view>
#include <thread>

#include "base/runtime_error.h"
#include "machine/descriptor_shares.h"

namespace rotacasts::host {
namespace {

// How much of a program's standard error is kept; the rest is read and dropped.
constexpr std::size_t kMostWords = 400;

/// How a program is started: no input, no output except its errors, no blocked or ignored signals,
/// and a process group, so that it can be killed with its children.
class SpawnSettings {
 public:
  explicit SpawnSettings(int errors) {
    ::posix_spawn_file_actions_init(&actions);
    ::posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
    ::posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
    ::posix_spawn_file_actions_adddup2(&actions, errors, STDERR_FILENO);
    ::posix_spawnattr_init(&attributes);
    sigset_t none;
    sigset_t all;
    sigemptyset(&none);
    sigfillset(&all);
    ::posix_spawnattr_setsigmask(&attributes, &none);
    ::posix_spawnattr_setsigdefault(&attributes, &all);
    ::posix_spawnattr_setpgroup(&attributes, 0);
    ::posix_spawnattr_setflags(
        &attributes, POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF | POSIX_SPAWN_SETPGROUP);
  }
  ~SpawnSettings() {
    ::posix_spawn_file_actions_destroy(&actions);
    ::posix_spawnattr_destroy(&attributes);
  }
  SpawnSettings(const SpawnSettings&) = delete;
  SpawnSettings& operator=(const SpawnSettings&) = delete;

  posix_spawn_file_actions_t actions;
  posix_spawnattr_t attributes;
};

std::string Outcome(int status) {
  if (WIFSIGNALED(status)) return std::string("was ended by ") + ::strsignal(WTERMSIG(status));
  const int code = WEXITSTATUS(status);
  return code == 0 ? "" : "ended with status " + std::to_string(code);
}

// Names the program that a process belongs to, in its environment. A process can leave its group,
// its session and its parent, and then only what it was given at its start tells where it comes
// from.
constexpr const char* kMark = "ROTACASTS_SAY=";

/// The environment of this process with the mark.
std::vector<char*> MarkedEnvironment(std::string& mark) {
  std::vector<char*> variables;
  for (char** variable = environ; *variable != nullptr; ++variable) {
    if (!std::string_view(*variable).starts_with(kMark)) variables.push_back(*variable);
  }
  variables.push_back(mark.data());
  variables.push_back(nullptr);
  return variables;
}

bool HasMark(const std::filesystem::path& process, const std::string& mark) {
  std::ifstream file(process / "environ", std::ios::binary);
  for (std::string variable; std::getline(file, variable, '\0');) {
    if (variable == mark) return true;
  }
  return false;
}

/// Kills the processes with the mark. Returns whether there were any.
bool KillMarked(const std::string& mark) {
  bool found = false;
  std::error_code problem;
  for (const auto& entry : std::filesystem::directory_iterator("/proc", problem)) {
    const std::string name = entry.path().filename().string();
    if (name.find_first_not_of("0123456789") != name.npos || !HasMark(entry.path(), mark)) continue;
    // The descriptor stays with this process, and the second look shows that it is the one meant.
    const int process = static_cast<int>(::syscall(SYS_pidfd_open, std::stoi(name), 0));
    if (process < 0) continue;
    if (HasMark(entry.path(), mark)) {
      ::syscall(SYS_pidfd_send_signal, process, SIGKILL, nullptr, 0);
      found = true;
    }
    ::close(process);
  }
  return found;
}

/// Kills the program and whatever it has started, wherever that has gone.
void KillAll(pid_t leader, const std::string& mark) {
  ::kill(-leader, SIGKILL);
  ::kill(leader, SIGKILL);        // it may have joined another group
  constexpr int kMostLooks = 10;  // one may start another while the look goes on
  for (int looks = 0; looks < kMostLooks && KillMarked(mark); ++looks) {
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
  }
}

}  // namespace

struct ProgramStarter::Child {
  ~Child() {
    ::close(process);
    ::close(errors);
  }
  /// Reads what is available without waiting.
  void ReadErrors() {
    char bytes[512];
    for (ssize_t count; (count = ::read(errors, bytes, sizeof bytes)) > 0;) {
      const std::size_t room = kMostWords - std::min(words.size(), kMostWords);
      words.append(bytes, std::min(room, static_cast<std::size_t>(count)));
    }
  }

  std::string name;
  std::string mark;
  int process = -1;  // a descriptor that becomes ready when the process ends
  int errors = -1;   // reads its standard error
  bool isLate = false;
  EventLoop::Clock::time_point limit;
  std::function<void(const ProgramEnd&)> onEnd;
  std::string words;
};

ProgramStarter::ProgramStarter(EventLoop& loop, std::chrono::milliseconds timeLimit)
    : loop_(loop), timeLimit_(timeLimit) {
  loop_.AddDeadline([this] { return NextLimit(); }, [this] { KillLate(); });
}

ProgramStarter::~ProgramStarter() {
  for (const auto& [id, program] : running_) {
    KillAll(id, program->mark);
    loop_.Unwatch(program->process);
    loop_.Unwatch(program->errors);
  }
}

void ProgramStarter::Start(const std::vector<std::string>& command,
                           std::function<void(const ProgramEnd& end)> onEnd) {
  Waiting program{command, std::move(onEnd)};
  if (running_.size() >= OwnDescriptorShares().programs) {
    waiting_.push_back(std::move(program));
  } else {
    Launch(std::move(program));
  }
}

void ProgramStarter::LaunchWaiting() {
  while (!waiting_.empty() && running_.size() < OwnDescriptorShares().programs) {
    Waiting next = std::move(waiting_.front());
    waiting_.pop_front();
    const auto onEnd = next.onEnd;
    try {
      Launch(std::move(next));
    } catch (const RuntimeError& error) {
      onEnd({false, error.description});
    }
  }
}

void ProgramStarter::Launch(Waiting wanted) {
  auto program = std::make_unique<Child>();
  program->name = wanted.command.at(0);
  program->mark = kMark + std::to_string(::getpid()) + "." + std::to_string(++started_);
  int ends[2] = {-1, -1};
  int problem = ::pipe2(ends, O_CLOEXEC | O_NONBLOCK) != 0 ? errno : 0;
  program->errors = ends[0];
  std::vector<char*> words;
  words.reserve(wanted.command.size() + 1);
  for (std::string& word : wanted.command) words.push_back(word.data());
  words.push_back(nullptr);
  pid_t id = 0;
  if (problem == 0) {
    const SpawnSettings settings(ends[1]);
    problem = ::posix_spawnp(&id, words[0], &settings.actions, &settings.attributes, words.data(),
                             MarkedEnvironment(program->mark).data());
    ::close(ends[1]);
  }
  if (problem == 0) {
    program->process = static_cast<int>(::syscall(SYS_pidfd_open, id, 0));
    if (program->process < 0) {  // nothing would tell of its end
      problem = errno;
      KillAll(id, program->mark);
      ::waitpid(id, nullptr, 0);
    }
  }
  if (problem != 0) {
    throw RuntimeError(static_cast<std::int32_t>(ErrorNumber::DeviceIoError),
                       program->name + " cannot be started (" + std::strerror(problem) + ")");
  }
  program->limit = EventLoop::Clock::now() + timeLimit_;
  program->onEnd = std::move(wanted.onEnd);
  Child& running = *(running_[id] = std::move(program));
  loop_.Watch(running.process, POLLIN, [this, id](short) { Ended(id); });
  loop_.Watch(running.errors, POLLIN, [this, &running](short ready) {
    running.ReadErrors();
    if ((ready & POLLIN) == 0) loop_.Unwatch(running.errors);  // closed by the program
  });
}

std::optional<EventLoop::Clock::time_point> ProgramStarter::NextLimit() const {
  std::optional<EventLoop::Clock::time_point> first;
  for (const auto& [id, program] : running_) {
    if (!program->isLate && (!first || program->limit < *first)) first = program->limit;
  }
  return first;
}

void ProgramStarter::KillLate() {
  for (const auto& [id, program] : running_) {
    if (program->isLate || program->limit > EventLoop::Clock::now()) continue;
    program->isLate = true;
    KillAll(id, program->mark);
  }
}

void ProgramStarter::Ended(int process) {
  int status = 0;
  if (::waitpid(process, &status, WNOHANG) != process) return;
  const std::unique_ptr<Child> program = std::move(running_.extract(process).mapped());
  loop_.Unwatch(program->process);
  loop_.Unwatch(program->errors);
  program->ReadErrors();
  LaunchWaiting();
  std::string problem = Outcome(status);
  if (program->isLate) {
    problem = "took longer than " +
              std::to_string(std::chrono::duration_cast<std::chrono::seconds>(timeLimit_).count()) +
              " s and was ended";
  }
  const bool isDone = problem.empty();
  std::replace(program->words.begin(), program->words.end(), '\n', ' ');
  program->words.erase(program->words.find_last_not_of(' ') + 1);
  if (!program->words.empty()) problem += (problem.empty() ? "said: " : ": ") + program->words;
  program->onEnd({isDone, problem.empty() ? "" : program->name + " " + problem});
}

}  // namespace rotacasts::host
