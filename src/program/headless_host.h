// What a host without a window is made of, on every system.
#pragma once

#include <cstdint>
#include <ostream>
#include <string>
#include <vector>

#include "console/console.h"
#include "host/headless_plugin.h"
#include "host/host_options.h"
#include "machine/program_runner.h"
#include "machine/turn_loop.h"

namespace rotacasts::host {

/// What a host says when nobody can type any more.
inline constexpr const char* kGoesOnAlone =
    "the console's input has ended; the host goes on, and \"rotacasts-host console\" reaches it";

/// The plugin for each profile, the host's own operations and its console, at work in a loop. The
/// references must outlive it, and the loop must not run again when it is gone.
class HeadlessHost {
 public:
  HeadlessHost(TurnLoop& loop, ProgramRunner& programs, HostProfiles& profiles,
               const HostOptions& options, std::ostream& out);
  ~HeadlessHost();
  HeadlessHost(const HeadlessHost&) = delete;
  HeadlessHost& operator=(const HeadlessHost&) = delete;

  /// Starts every profile, and says so.
  void Start() { console_.Start(); }
  /// Runs a command of the host's own console. False if it ends the host: then it stops the loop.
  bool Execute(const std::string& line);
  ServerHost& Host() { return host_; }
  std::vector<std::int32_t> Indexes() const;

 private:
  /// Reports a failed chat program as an error of its profile. The plugin reports a datagram's.
  void TellOfChat(const SentText& sent);

  TurnLoop& loop_;
  HostProfiles& profiles_;
  Troubles troubles_;
  HeadlessPlugin plugin_;
  HeadlessSite site_;
  ServerHost host_;
  Console console_;
};

}  // namespace rotacasts::host
