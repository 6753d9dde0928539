// The game servers' processes, as the profiles name them.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "host/machine/process_reader.h"

namespace rotacasts::host {

/// The process of each profile, by process id or by program name. A handle stands for the profile's
/// entry, not for the process: a server that was started anew under the same program name is found
/// again by itself.
class GameProcesses {
 public:
  /// `process` is a process id or a program name; `label` names the profile in errors.
  std::int32_t Register(std::string process, std::string label);
  /// Gives the handle another process.
  void Change(std::int32_t handle, std::string process, std::string label);

  /// Errors 57, with the profile and the way out, unless the read is complete.
  std::int32_t ReadLong(std::int32_t handle, std::int32_t address);
  /// The bytes up to the first NUL, at most 255, fewer where the mapped memory ends.
  std::string ReadBytes(std::int32_t handle, std::int32_t address);

 private:
  struct Entry {
    std::string process;
    std::string label;
    ProcessId found = 0;  // 0 until it is looked up
  };

  Entry& At(std::int32_t handle);
  static ProcessId Find(Entry& entry);
  [[noreturn]] static void RaiseOutcome(Entry& entry, ReadOutcome outcome, std::int32_t address);

  std::vector<Entry> entries_;
};

}  // namespace rotacasts::host
