// The game servers' processes.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "siblings/read_ahead.h"

namespace rotacasts::host {

/// A game server's process, as its profile names it.
struct GameProcess {
  std::string process;     // a process id or a program name
  std::uint16_t port = 0;  // the UDP port that the server receives at; 0 if unknown
  std::string label;       // names the profile in errors
};

/// Finds and reads each profile's process. A handle stands for the profile, not for the process, so
/// a server that restarts under the same program name is found again. If several programs have the
/// name, the one that receives at the port is meant; if none does, that is an error, because any
/// other would be another profile's server. Without a port there must be only one.
class GameProcesses {
 public:
  std::int32_t Register(GameProcess process);
  /// Changes the process that the handle stands for.
  void Change(std::int32_t handle, GameProcess process);

  /// Reads a value. Errors, also of ReadBytes: 57, with the profile and what to do, if the read
  /// fails.
  std::int32_t ReadLong(std::int32_t handle, std::int32_t address);
  /// Reads the bytes up to the first NUL, at most 255, fewer where the mapped memory ends.
  std::string ReadBytes(std::int32_t handle, std::int32_t address);

  /// Between these two calls, reads fetch whole pages and may be answered from them.
  void BeginTurn() { reader_.BeginTurn(); }
  void EndTurn() { reader_.EndTurn(); }

 private:
  struct Entry : GameProcess {
    ProcessId found = 0;  // 0 until it is found
  };

  Entry& At(std::int32_t handle);
  ProcessId Find(Entry& entry);
  [[noreturn]] static void RaiseOutcome(Entry& entry, ReadOutcome outcome, std::int32_t address);

  std::vector<Entry> entries_;
  ReadAhead reader_;
};

}  // namespace rotacasts::host
