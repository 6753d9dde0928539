// The game servers' processes.
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "base/runtime_error.h"
#include "siblings/read_ahead.h"

namespace rotacasts::host {

/// A game server's process, as its profile names it.
struct GameProcess {
  std::string process;     // a process id or a program name
  std::uint16_t port = 0;  // the UDP port that the server receives at; 0 if unknown
  std::string label;       // names the profile in errors

  bool operator==(const GameProcess&) const = default;
};

/// Whether an error is one of a read of a game server. Its description names the profile.
bool IsServerError(const RuntimeError& error);
/// Whether it is one because the server is away, which `GameProcesses::onNews` has reported if the
/// read was one that ReadsAsZero.
bool IsServerAway(const RuntimeError& error);

/// How a read answers while its server is away: no process has its id, the process has ended, no
/// program of its name is running, or none of them receives at its port.
enum class WhenAway {
  IsError,     // every read is
  ReadsAsZero  // only the first one that misses a server that was there
};

/// What becomes of a server between the reads.
enum class ServerNews { NeverThere, Gone, Back, Replaced };

/// The process of each profile. A handle stands for the profile's entry, not for the process: a
/// server that was started again under the same program name is found again by itself. Of the
/// programs of a name it is the one that receives at the port; if none does, the server is away,
/// because another one would be another profile's. Without a port there must be one only. Who
/// receives at the port is looked at again about once a second of reading, because a server that
/// hangs may give its port up to its successor and still answer reads.
class GameProcesses {
 public:
  using Clock = std::chrono::steady_clock;
  /// How long a process counts as the one that receives at the port without another look.
  static constexpr std::chrono::seconds kLookPeriod{1};

  std::int32_t Register(GameProcess process);
  /// Gives the handle another process; the same one again is looked up again.
  void Change(std::int32_t handle, GameProcess process);
  /// The next read of every profile looks again who receives at its port.
  void LookAgain();

  /// Errors 57, with the profile and the way out, unless the read is complete; but see WhenAway.
  std::int32_t ReadLong(std::int32_t handle, std::int32_t address,
                        WhenAway whenAway = WhenAway::IsError);
  /// The bytes up to the first NUL, at most 255, fewer where the mapped memory ends.
  std::string ReadBytes(std::int32_t handle, std::int32_t address,
                        WhenAway whenAway = WhenAway::IsError);

  /// Called with words for the person once when a server is away and once when it is back, as the
  /// reads with ReadsAsZero find it, and when any read finds another process in its place. For Gone
  /// the read raises these words right after.
  std::function<void(ServerNews news, const std::string& words)> onNews;
  /// Whether the server is away, as onNews has reported.
  bool IsAway(std::int32_t handle) { return At(handle).isAway; }

  /// Between these two calls, reads fetch whole pages and may be answered from them, and the
  /// running processes are listed at most once.
  void BeginTurn(Clock::time_point now = Clock::now());
  void EndTurn();

 private:
  struct Entry : GameProcess {
    explicit Entry(GameProcess named) : GameProcess(std::move(named)) {}
    ProcessId found = 0;    // 0 until it is looked up
    ReceivedPort receives;  // by which it was found; HoldsPort::No if by its name or id
    Clock::time_point lookedAt;
    bool isKnown = false;  // a read has been complete since it was last away
    bool isAway = false;
  };

  Entry& At(std::int32_t handle);
  /// Looks again, at times, whether the process still receives at the port.
  bool IsStillServing(Entry& entry);
  ProcessId Find(Entry& entry);
  /// Sets the one of the processes that receives at the port. Errors: 57.
  void Choose(Entry& entry, const std::vector<ProcessId>& processes);
  std::int32_t ReadLong(Entry& entry, std::int32_t address);
  std::string ReadBytes(Entry& entry, std::int32_t address);
  template <class Read>
  auto Answer(Entry& entry, WhenAway whenAway, Read read) -> decltype(read());
  void NoteThere(Entry& entry);
  /// True if it was there, so that the read is to raise.
  bool NoteAway(Entry& entry, const std::string& why);
  [[noreturn]] static void RaiseOutcome(Entry& entry, ReadOutcome outcome, std::int32_t address);

  std::vector<Entry> entries_;
  std::optional<Clock::time_point> turn_;  // when the current turn began
  ReadAhead reader_;
};

}  // namespace rotacasts::host
