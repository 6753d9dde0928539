// The game servers' processes, as the profiles name them.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "siblings/read_ahead.h"

namespace rotacasts::host {

/// A game server's process as a profile names it.
struct GameProcess {
  std::string process;     // a process id or a program name
  std::uint16_t port = 0;  // the UDP port that the server receives at; 0 when it is not known
  std::string label;       // names the profile in errors
};

/// The process of each profile. A handle stands for the profile's entry, not for the process: a
/// server that was started again under the same program name is found again by itself. Of the
/// programs of a name it is the one that receives at the port; if none does, that is an error, for
/// another one would be another profile's server. Without a port there must be one only.
class GameProcesses {
 public:
  std::int32_t Register(GameProcess process);
  /// Gives the handle another process.
  void Change(std::int32_t handle, GameProcess process);

  /// Errors 57, with the profile and the way out, unless the read is complete.
  std::int32_t ReadLong(std::int32_t handle, std::int32_t address);
  /// The bytes up to the first NUL, at most 255, fewer where the mapped memory ends.
  std::string ReadBytes(std::int32_t handle, std::int32_t address);

  /// What lies between the two is read ahead and may be answered from what has been read.
  void BeginTurn() { reader_.BeginTurn(); }
  void EndTurn() { reader_.EndTurn(); }

 private:
  struct Entry : GameProcess {
    ProcessId found = 0;  // 0 until it is looked up
  };

  Entry& At(std::int32_t handle);
  ProcessId Find(Entry& entry);
  [[noreturn]] static void RaiseOutcome(Entry& entry, ReadOutcome outcome, std::int32_t address);

  std::vector<Entry> entries_;
  ReadAhead reader_;
};

}  // namespace rotacasts::host
