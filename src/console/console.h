// The console: one command per line.
#pragma once

#include <ostream>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "host/server_host.h"

namespace rotacasts::host {

class Console {
 public:
  Console(ServerHost& host, std::ostream& out) : host_(host), out_(out) {}

  /// Starts every profile and prints how to get help.
  void Start();
  /// What a command came to; Refused once an error was printed, with what to do about it.
  enum class Outcome { Done, Refused, Quit };
  Outcome Execute(const std::string& line);
  /// Called when a signal asks the host to reload.
  void Reload() { Execute("reload"); }

  /// Every command's usage and help.
  static std::vector<std::pair<std::string, std::string>> Commands();

 private:
  class Arguments;
  struct Command;
  static const Command kCommands[];
  void Run(std::string_view line);
  void PrintHelp() const;
  void PrintMessages(std::int32_t index);
  void PrintAllStatus();
  void PrintReloaded();
  /// Index 0 means all profiles.
  void PrintSent(std::int32_t profile);
  /// The first profile with a running game, or else the first of all; 0 if there is none.
  std::int32_t FirstRunning();
  /// Index 0 means the profile of FirstRunning.
  void PrintPlaceholders(std::int32_t index);
  void PrintRemote(Arguments& arguments);

  ServerHost& host_;
  std::ostream& out_;
  bool hasQuit_ = false;
};

/// Prints a profile's messages with their positions and what each says now. Returns false if its
/// game server cannot be reached.
bool PrintMessageTable(std::ostream& out, Preview& preview, const ProfileSettings& profile,
                       const MessageList& list);

}  // namespace rotacasts::host
