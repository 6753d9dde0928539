// The console: one command a line.
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

  /// Starts every profile and says how to go on.
  void Start();
  /// Carries out one line; false once the person wants to quit. An error is printed, with the way
  /// out, and changes nothing else.
  bool Execute(const std::string& line);
  /// What the host does when it is asked to reload by a signal.
  void Reload() { Execute("reload"); }

  /// What can be typed, and what it does.
  static std::vector<std::pair<std::string, std::string>> Commands();
  /// The commands' names, for whoever completes them.
  static std::vector<std::string> CommandNames();

 private:
  class Arguments;
  struct Command;
  static const Command kCommands[];
  void Run(std::string_view line);
  void PrintHelp() const;
  void PrintMessages(std::int32_t index);
  void PrintAllStatus();
  void PrintReloaded();
  /// Of all profiles for index 0.
  void PrintSent(std::int32_t profile);
  /// The first profile with a running game; without one the first of all.
  std::int32_t FirstRunning();
  /// For index 0 those of the first running game.
  void PrintPlaceholders(std::int32_t index);
  void PrintRemote(Arguments& arguments);

  ServerHost& host_;
  std::ostream& out_;
  bool goesOn_ = true;
};

/// Prints a profile's messages with their positions and what each says now; false when its game
/// server cannot be reached.
bool PrintMessageTable(std::ostream& out, Preview& preview, const ProfileSettings& profile,
                       const MessageList& list);

}  // namespace rotacasts::host
