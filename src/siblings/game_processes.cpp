#include "siblings/game_processes.h"

#include <charconv>
#include <cstdio>
#include <cstring>
#include <tuple>
#include <utility>

namespace rotacasts::host {
namespace {

// The longest text that is read; names in games are shorter.
constexpr std::size_t kLongestText = 255;

constexpr const char* kNotAllowed = " may not be read; run this host as the game server's user";

/// The process id if the text is one, also beyond 32 bits; 0 for a program name.
ProcessId AsNumber(const std::string& text) {
  ProcessId number = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  return error == std::errc() && end == text.data() + text.size() && number > 0 ? number : 0;
}

std::string Running(std::size_t count, const std::string& name) {
  return count == 1 ? "a program " + name + " is running"
                    : std::to_string(count) + " programs " + name + " are running";
}

// The sources of the errors of reads.
constexpr const char* kServer = "game server";
constexpr const char* kAwayServer = "game server that is away";

struct ServerError : RuntimeError {
  explicit ServerError(std::string why, const char* from = kServer)
      : RuntimeError(static_cast<std::int32_t>(ErrorNumber::DeviceIoError), std::move(why)) {
    source = from;
  }
};

struct ServerAway : ServerError {
  explicit ServerAway(std::string why) : ServerError(std::move(why), kAwayServer) {}
};

}  // namespace

bool IsServerError(const RuntimeError& error) {
  return error.source == kServer || IsServerAway(error);
}

bool IsServerAway(const RuntimeError& error) {
  return error.source == kAwayServer;
}

std::int32_t GameProcesses::Register(GameProcess process) {
  entries_.emplace_back(std::move(process));
  return static_cast<std::int32_t>(entries_.size());
}

void GameProcesses::Change(std::int32_t handle, GameProcess process) {
  Entry& entry = At(handle);
  if (entry == process) {
    entry.found = 0;
  } else {
    entry = Entry(std::move(process));
  }
}

void GameProcesses::LookAgain() {
  for (Entry& entry : entries_) entry.lookedAt = {};
}

void GameProcesses::BeginTurn(Clock::time_point now) {
  turn_ = now;
  reader_.BeginTurn();
}

void GameProcesses::EndTurn() {
  turn_.reset();
  reader_.EndTurn();
}

GameProcesses::Entry& GameProcesses::At(std::int32_t handle) {
  if (handle < 1 || static_cast<std::size_t>(handle) > entries_.size()) {
    throw RuntimeError(static_cast<std::int32_t>(ErrorNumber::DeviceIoError),
                       "no game server has the handle " + std::to_string(handle));
  }
  return entries_[static_cast<std::size_t>(handle) - 1];
}

bool GameProcesses::IsStillServing(Entry& entry) {
  if (entry.found == 0) return false;
  if (entry.receives.holds == HoldsPort::No) return true;  // not chosen by its port
  const Clock::time_point now = turn_ ? *turn_ : Clock::now();
  if (now - entry.lookedAt < kLookPeriod) return true;
  entry.lookedAt = now;
  return IsStillOpen(entry.receives);
}

ProcessId GameProcesses::Find(Entry& entry) {
  if (IsStillServing(entry)) return entry.found;
  const ProcessId before = std::exchange(entry.found, 0);
  entry.receives = {};
  if (const ProcessId number = AsNumber(entry.process); number != 0) return entry.found = number;
  const std::vector<ProcessId> processes = reader_.Find(entry.process);
  if (processes.empty()) {
    throw ServerAway(entry.label + ": no program " + entry.process + " is running; start it");
  }
  if (entry.port != 0) {
    Choose(entry, processes);
  } else if (processes.size() == 1) {
    entry.found = processes.front();
  } else {
    throw ServerError(entry.label + ": " + Running(processes.size(), entry.process) +
                      "; name one by its process id");
  }
  if (before != 0 && before != entry.found && onNews) {
    onNews(ServerNews::Replaced, entry.label + ": another process receives at the Target port " +
                                     std::to_string(entry.port) + " now, " +
                                     std::to_string(entry.found));
  }
  return entry.found;
}

void GameProcesses::Choose(Entry& entry, const std::vector<ProcessId>& processes) {
  std::vector<std::pair<ProcessId, ReceivedPort>> certain;
  std::vector<std::pair<ProcessId, ReceivedPort>> possible;
  ProcessId secret = 0;
  for (const ProcessId process : processes) {
    const ReceivedPort port = reader_.Receives(process, entry.port);
    if (port.holds == HoldsPort::Yes) certain.emplace_back(process, port);
    if (port.holds == HoldsPort::Perhaps) possible.emplace_back(process, port);
    if (port.holds == HoldsPort::NotAllowed) secret = process;
  }
  const auto& receiving = certain.empty() ? possible : certain;
  if (receiving.size() == 1) {
    std::tie(entry.found, entry.receives) = receiving.front();
    entry.lookedAt = turn_ ? *turn_ : Clock::now();
    return;
  }
  if (receiving.empty() && secret != 0) {
    throw ServerError(entry.label + ": process " + std::to_string(secret) + kNotAllowed);
  }
  const std::string words =
      entry.label + ": " + Running(processes.size(), entry.process) + ", but " +
      (receiving.empty() ? "none" : "more than one") + " receives at the Target port " +
      std::to_string(entry.port) +
      "; start this profile's server, correct Target, or name the process by its id";
  if (receiving.empty()) throw ServerAway(words);
  throw ServerError(words);
}

void GameProcesses::RaiseOutcome(Entry& entry, ReadOutcome outcome, std::int32_t address) {
  const bool isNumber = AsNumber(entry.process) != 0;
  const std::string process = "process " + std::to_string(std::exchange(entry.found, 0));
  char place[16];
  std::snprintf(place, sizeof place, "0x%08X", static_cast<unsigned>(address));
  switch (outcome) {
    case ReadOutcome::ProcessGone:
      throw ServerAway(entry.label + ": the game server has ended (" + process + "); start it" +
                       (isNumber ? " and give its process id in profile.ini" : ""));
    case ReadOutcome::NotAllowed:
      throw ServerError(entry.label + ": " + process + kNotAllowed);
    default:
      throw ServerError(entry.label + ": " + process + " has no memory at " + place +
                        "; is GameCode the right one?");
  }
}

void GameProcesses::NoteThere(Entry& entry) {
  entry.isKnown = true;
  if (!std::exchange(entry.isAway, false)) return;
  if (onNews) {
    onNews(ServerNews::Back,
           entry.label + ": the game server is back (process " + std::to_string(entry.found) + ")");
  }
}

bool GameProcesses::NoteAway(Entry& entry, const std::string& why) {
  if (std::exchange(entry.isAway, true)) return false;
  const bool wasThere = std::exchange(entry.isKnown, false);
  if (onNews) onNews(wasThere ? ServerNews::Gone : ServerNews::NeverThere, why);
  return wasThere;
}

template <class Read>
auto GameProcesses::Answer(Entry& entry, WhenAway whenAway, Read read) -> decltype(read()) {
  if (whenAway == WhenAway::IsError) return read();
  try {
    auto value = read();
    NoteThere(entry);
    return value;
  } catch (const ServerAway& away) {
    if (NoteAway(entry, away.description)) throw;
    return {};
  }
}

std::int32_t GameProcesses::ReadLong(std::int32_t handle, std::int32_t address, WhenAway whenAway) {
  Entry& entry = At(handle);
  return Answer(entry, whenAway, [&] { return ReadLong(entry, address); });
}

std::string GameProcesses::ReadBytes(std::int32_t handle, std::int32_t address, WhenAway whenAway) {
  Entry& entry = At(handle);
  return Answer(entry, whenAway, [&] { return ReadBytes(entry, address); });
}

std::int32_t GameProcesses::ReadLong(Entry& entry, std::int32_t address) {
  std::int32_t value = 0;
  const ReadOutcome outcome =
      reader_.Read(Find(entry), static_cast<std::uint32_t>(address), &value, sizeof value);
  if (outcome != ReadOutcome::Complete) RaiseOutcome(entry, outcome, address);
  return value;
}

std::string GameProcesses::ReadBytes(Entry& entry, std::int32_t address) {
  char buffer[kLongestText];
  std::size_t count = 0;
  const ReadOutcome outcome = reader_.ReadText(Find(entry), static_cast<std::uint32_t>(address),
                                               buffer, sizeof buffer, count);
  if (outcome != ReadOutcome::Complete) RaiseOutcome(entry, outcome, address);
  return {buffer, ::strnlen(buffer, count)};
}

}  // namespace rotacasts::host
