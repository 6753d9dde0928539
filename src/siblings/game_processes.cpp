#include "siblings/game_processes.h"

#include <charconv>
#include <cstdio>
#include <cstring>
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

/// The processes that certainly receive at the port, or else those that may. `secret` becomes one
/// that cannot be inspected.
std::vector<ProcessId> Receiving(const std::vector<ProcessId>& processes, std::uint16_t port,
                                 ProcessId& secret) {
  std::vector<ProcessId> certain;
  std::vector<ProcessId> possible;
  for (const ProcessId process : processes) {
    const HoldsPort holds = HoldsUdpPort(process, port);
    if (holds == HoldsPort::Yes) certain.push_back(process);
    if (holds == HoldsPort::Perhaps) possible.push_back(process);
    if (holds == HoldsPort::NotAllowed) secret = process;
  }
  return certain.empty() ? possible : certain;
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
  entries_.push_back({std::move(process)});
  return static_cast<std::int32_t>(entries_.size());
}

void GameProcesses::Change(std::int32_t handle, GameProcess process) {
  Entry& entry = At(handle);
  if (entry == process) {
    entry.found = 0;
  } else {
    entry = {std::move(process)};
  }
}

GameProcesses::Entry& GameProcesses::At(std::int32_t handle) {
  if (handle < 1 || static_cast<std::size_t>(handle) > entries_.size()) {
    throw RuntimeError(static_cast<std::int32_t>(ErrorNumber::DeviceIoError),
                       "no game server has the handle " + std::to_string(handle));
  }
  return entries_[static_cast<std::size_t>(handle) - 1];
}

ProcessId GameProcesses::Find(Entry& entry) {
  if (entry.found != 0) return entry.found;
  const std::string& name = entry.process;
  if (const ProcessId number = AsNumber(name); number != 0) return entry.found = number;
  std::vector<ProcessId> processes = reader_.Find(name);
  if (processes.empty()) {
    throw ServerAway(entry.label + ": no program " + name + " is running; start it");
  }
  const std::size_t running = processes.size();
  ProcessId secret = 0;
  if (entry.port != 0) processes = Receiving(processes, entry.port, secret);
  if (processes.size() == 1) return entry.found = processes.front();
  if (processes.empty() && secret != 0) {
    throw ServerError(entry.label + ": process " + std::to_string(secret) + kNotAllowed);
  }
  const std::string programs = running == 1
                                   ? "a program " + name + " is running"
                                   : std::to_string(running) + " programs " + name + " are running";
  if (entry.port == 0) {
    throw ServerError(entry.label + ": " + programs + "; name one by its process id");
  }
  const bool isAway = processes.empty();
  const std::string words =
      entry.label + ": " + programs + ", but " + (isAway ? "none" : "more than one") +
      " receives at the Target port " + std::to_string(entry.port) +
      "; start this profile's server, correct Target, or name the process by its id";
  if (isAway) throw ServerAway(words);
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
