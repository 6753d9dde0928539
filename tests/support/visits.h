// Visits: what the host, the timers and other hands can do inside each call, box and menu of an
// operation, done there, and what must hold whatever was done.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "support/fake_host.h"

namespace rotacasts::testing {

/// What a person does in the window that shows profile 2. The list's changes choose from the menu
/// of its second row; Press and Release are the Add button's.
enum class Change { Press, Release, Up, Down, Delete, Switch, Interval, NoInterval, Token };

/// The plugin under visit, in this process or in its DLL.
class VisitedPlugin {
 public:
  struct Shown {
    std::vector<std::string> rows;
    std::string enable;
    std::string interval;
    bool operator==(const Shown&) const = default;
  };

  explicit VisitedPlugin(FakeHost& fakeHost) : host(fakeHost) {}
  virtual ~VisitedPlugin() = default;

  /// LoadInterface of the profile with its own data.
  virtual void Load(std::int32_t index) = 0;
  /// Any other member of the plugin, by name; the reply.
  virtual std::string Call(const char* member, std::vector<HostValue> arguments) = 0;
  /// The profile's period passes. Nothing happens without its timer.
  virtual void Tick(std::int16_t index) = 0;
  /// Nothing happens without the window. Press types the text before.
  virtual void Make(Change change, const std::string& text) = 0;
  /// What the window shows; nothing while there is none.
  virtual std::optional<Shown> Window() = 0;
  /// Position, tick count and timer of profile 2; empty where that is not seen.
  virtual std::string State() { return {}; }
  /// Whether an unloaded plugin has left nothing behind.
  virtual bool IsGone() = 0;

  FakeHost& host;
  /// Runs inside each box, menu and picture that is loaded, with a name for it. The calls of the
  /// components have hooks of their own.
  std::function<void(const std::string& place)> onPlace;
};

/// Runs every operation once for each visit and each place inside it (or each of every `step`
/// places, other ones for each visit), with that visit there. Returns how many were run.
int VisitEveryPlace(VisitedPlugin& plugin, int step = 1);

/// Runs operations with random visits at random places, up to three deep. Returns how many visits
/// there were.
int VisitAtRandom(VisitedPlugin& plugin, int runs, unsigned seed);

}  // namespace rotacasts::testing
