#include "siblings/read_ahead.h"

#include <algorithm>
#include <cstring>

namespace rotacasts::host {
namespace {

/// Of several sockets at the port the most certain one; HoldsPort::No if there is none.
ReceivedPort MostCertain(const std::vector<ReceivedPort>& ports, std::uint16_t port) {
  ReceivedPort best{port};
  for (const ReceivedPort& one : ports) {
    if (one.port != port || best.holds == HoldsPort::Yes) continue;
    best = one;
  }
  return best;
}

}  // namespace

void ReadAhead::BeginTurn() {
  EndTurn();  // an error may have left the last one open
  isInTurn_ = true;
}

void ReadAhead::EndTurn() {
  isInTurn_ = false;
  pages_.clear();  // keeps the memory for the next turn
  programs_.clear();
  ports_.clear();
}

std::vector<ReadAhead::Page>::iterator ReadAhead::LeastUsed() {
  if (pages_.size() == kMostPages) {
    return std::min_element(pages_.begin(), pages_.end(),
                            [](const Page& a, const Page& b) { return a.lastUse < b.lastUse; });
  }
  pages_.reserve(kMostPages);
  return pages_.emplace(pages_.end());
}

ReadOutcome ReadAhead::PageAt(ProcessId process, std::uint64_t address, const Page*& page) {
  constexpr std::uint64_t kBeyond = std::uint64_t{1} << 32;
  if (address >= kBeyond) return ReadOutcome::NotMapped;
  const auto number = static_cast<std::uint32_t>(address / kPageSize);
  auto found = std::find_if(pages_.begin(), pages_.end(), [&](const Page& kept) {
    return kept.number == number && kept.process == process;
  });
  if (found == pages_.end()) {
    found = LeastUsed();
    found->process = 0;  // empty until it is read
    const ReadOutcome outcome = ReadProcess(process, static_cast<std::uint32_t>(number * kPageSize),
                                            found->bytes.data(), kPageSize);
    if (outcome != ReadOutcome::Complete) return outcome;
    found->process = process;
    found->number = number;
  }
  found->lastUse = ++uses_;
  page = &*found;
  return ReadOutcome::Complete;
}

ReadOutcome ReadAhead::Read(ProcessId process, std::uint32_t address, void* buffer,
                            std::size_t size) {
  if (!isInTurn_) return ReadProcess(process, address, buffer, size);
  for (std::size_t done = 0; done < size;) {
    const Page* page = nullptr;
    const ReadOutcome outcome = PageAt(process, std::uint64_t{address} + done, page);
    if (outcome != ReadOutcome::Complete) return outcome;
    const std::size_t offset = (address + done) % kPageSize;
    const std::size_t part = std::min(size - done, kPageSize - offset);
    std::memcpy(static_cast<char*>(buffer) + done, page->bytes.data() + offset, part);
    done += part;
  }
  return ReadOutcome::Complete;
}

ReadOutcome ReadAhead::ReadText(ProcessId process, std::uint32_t address, char* buffer,
                                std::size_t size, std::size_t& count) {
  if (!isInTurn_) return ReadProcessUpTo(process, address, buffer, size, count);
  for (count = 0; count < size;) {
    const Page* page = nullptr;
    const ReadOutcome outcome = PageAt(process, std::uint64_t{address} + count, page);
    if (outcome == ReadOutcome::NotMapped && count > 0) break;
    if (outcome != ReadOutcome::Complete) return outcome;
    const std::size_t offset = (address + count) % kPageSize;
    const std::size_t part = std::min(size - count, kPageSize - offset);
    std::memcpy(buffer + count, page->bytes.data() + offset, part);
    const bool isEnded = std::memchr(buffer + count, '\0', part) != nullptr;
    count += part;
    if (isEnded) break;
  }
  return ReadOutcome::Complete;
}

std::vector<ProcessId> ReadAhead::Find(const std::string& programName) {
  if (!isInTurn_) return FindProcesses(programName);
  const auto [found, isNew] = programs_.try_emplace(programName);
  if (isNew) found->second = FindProcesses(programName);
  return found->second;
}

ReceivedPort ReadAhead::Receives(ProcessId process, std::uint16_t port) {
  if (!isInTurn_) return MostCertain(UdpPortsOf(process), port);
  const auto [found, isNew] = ports_.try_emplace(process);
  if (isNew) found->second = UdpPortsOf(process);
  return MostCertain(found->second, port);
}

}  // namespace rotacasts::host
