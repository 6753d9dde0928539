// The console: one command a line.
#pragma once

#include <ostream>
#include <string>
#include <string_view>

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

 private:
  struct Command;
  static const Command kCommands[];
  void Run(std::string_view line);
  void PrintHelp() const;

  ServerHost& host_;
  std::ostream& out_;
  bool goesOn_ = true;
};

}  // namespace rotacasts::host
