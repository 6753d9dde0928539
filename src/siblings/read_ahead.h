// Reads game servers' memory in pages, for one turn of the event loop.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "machine/process_reader.h"

namespace rotacasts::host {

/// Reads processes and finds programs. Between BeginTurn and EndTurn it reads whole pages and
/// answers from them, so that a player takes one system call instead of one for each counter. A
/// turn may therefore see a page as it was when the turn first read it; the next turn reads it
/// again. Only the latest pages are kept.
class ReadAhead {
 public:
  void BeginTurn();
  void EndTurn();

  /// Reads exactly `size` bytes at `address`.
  ReadOutcome Read(ProcessId process, std::uint32_t address, void* buffer, std::size_t size);
  /// Reads up to `size` bytes at `address`; stops early after a NUL or where the mapped memory
  /// ends. `count` is the number of bytes read. NotMapped if not even the first byte is mapped.
  ReadOutcome ReadText(ProcessId process, std::uint32_t address, char* buffer, std::size_t size,
                       std::size_t& count);
  /// The running processes of the program; within a turn, as they were when it first asked.
  std::vector<ProcessId> Find(const std::string& programName);
  /// How the process receives at the port; within a turn, as it was when the turn first asked about
  /// the process.
  ReceivedPort Receives(ProcessId process, std::uint16_t port);

  static constexpr std::size_t kMostPages = 8;

 private:
  static constexpr std::size_t kPageSize = 4096;  // a page of the machine is one or more of these
  struct Page {
    ProcessId process = 0;  // 0: none
    std::uint32_t number = 0;
    std::uint64_t lastUse = 0;
    std::array<char, kPageSize> bytes;
  };

  /// Finds or reads the page with the address. It is valid until the next call.
  ReadOutcome PageAt(ProcessId process, std::uint64_t address, const Page*& page);
  /// A new page, or the least recently used one.
  std::vector<Page>::iterator LeastUsed();

  bool isInTurn_ = false;
  std::vector<Page> pages_;
  std::uint64_t uses_ = 0;
  std::map<std::string, std::vector<ProcessId>> programs_;
  std::map<ProcessId, std::vector<ReceivedPort>> ports_;
};

}  // namespace rotacasts::host
