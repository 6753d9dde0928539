// Runs the host until the user ends it. One implementation per platform.
#pragma once

#include <memory>
#include <ostream>

#include "host/host_options.h"
#include "host/host_profiles.h"

namespace rotacasts::host {

/// Call it first in `main` for a program that will be a HostRun: a signal that arrives before then
/// waits for it, and one that arrives after its end changes nothing. Does nothing on Windows.
void HoldSignals();

/// The host at work. Once this object exists, the output never waits for a reader.
class HostRun {
 public:
  /// AsItIs leaves the output to the caller, where the system has other places for it.
  enum class Output { Console, AsItIs };
  explicit HostRun(Output output = Output::Console);
  ~HostRun();
  HostRun(const HostRun&) = delete;
  HostRun& operator=(const HostRun&) = delete;

  /// Creates the plugin, starts every profile and runs the console's commands. The profiles keep
  /// running after the end of the console's input.
  void Run(HostProfiles& profiles, const HostOptions& options, std::ostream& out);

 private:
  struct Parts;
  std::unique_ptr<Parts> parts_;
};

/// Does the same in a window with the DLL of the plugin, until the window is closed. Null on
/// systems without one.
using HostRunner = void(HostProfiles& profiles, const HostOptions& options, std::ostream& out);
extern HostRunner* const kRunInWindow;

}  // namespace rotacasts::host
