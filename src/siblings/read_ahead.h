// Reading game servers' memory in pages, for one turn of the event loop.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "machine/process_reader.h"

namespace rotacasts::host {

/// Reads processes and looks for programs. Between BeginTurn and EndTurn a whole page is read where
/// a few bytes are asked for, and what lies in it is answered from there: a player is one call of
/// the system, not one for each of his counters. So a turn may see a page as it was when the turn
/// first asked, and the next turn never does. The latest pages are kept, and no more.
class ReadAhead {
 public:
  void BeginTurn();
  void EndTurn();

  /// Reads exactly `size` bytes at `address`.
  ReadOutcome Read(ProcessId process, std::uint32_t address, void* buffer, std::size_t size);
  /// Reads up to `size` bytes at `address`, ending early after a NUL or where the mapped memory
  /// ends; `count` is what was read. NotMapped when not even the first byte is there.
  ReadOutcome ReadText(ProcessId process, std::uint32_t address, char* buffer, std::size_t size,
                       std::size_t& count);
  /// The running processes of the program; within a turn as they were when it first asked.
  std::vector<ProcessId> Find(const std::string& programName);

  static constexpr std::size_t kMostPages = 8;

 private:
  static constexpr std::size_t kPageSize =
      4096;  // a page of the machine is one or several of these
  struct Page {
    ProcessId process = 0;  // 0: none
    std::uint32_t number = 0;
    std::uint64_t lastUse = 0;
    std::array<char, kPageSize> bytes;
  };

  /// The page that holds the address, read unless it is there; valid until the next call.
  ReadOutcome PageAt(ProcessId process, std::uint64_t address, const Page*& page);
  /// A new one, or the one that was used least lately.
  std::vector<Page>::iterator Replaceable();

  bool isInTurn_ = false;
  std::vector<Page> pages_;
  std::uint64_t uses_ = 0;
  std::map<std::string, std::vector<ProcessId>> programs_;
};

}  // namespace rotacasts::host
