// Visits: what the host, the timers and other hands can do inside each call, box and menu of an
// operation, done there, and what must hold whatever was done.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "support/fake_host.h"

namespace rotacasts {
inline namespace testing {

/// The plugin under visit, in this process or in its DLL.
class VisitedPlugin {
 public:
  explicit VisitedPlugin(FakeHost& host) : fakes(host) {}
  virtual ~VisitedPlugin() = default;

  /// LoadInterface of the profile with its own data.
  virtual void Load(std::int32_t index) = 0;
  /// Any other member of the plugin, by name; the reply.
  virtual std::string Call(const char* member, std::vector<HostValue> arguments) = 0;
  /// The profile's period passes. Nothing happens without its timer.
  virtual void Tick(std::int16_t index) = 0;
  /// What a person does in the window: chooses the menu's item for the second row or the entry box,
  /// clicks the box, types the interval, or types a message and presses the Add button, which
  /// without a text is released. Nothing happens without the window.
  virtual void Act(const std::string& control, const std::string& text) = 0;
  /// The host frees the window that the plugin's lies in.
  virtual void FreeParent() = 0;
  /// The list's rows, the switch and the interval; empty while there is no window.
  virtual Texts Shown() = 0;
  /// Position, tick count and timer of profile 2; empty where that is not seen.
  virtual std::string Counters() { return {}; }
  /// Whether an unloaded plugin has left nothing behind.
  virtual bool IsGone() = 0;

  FakeHost& fakes;
  /// Runs inside each box ("title|text"), menu and picture; the components' calls have hooks of
  /// their own.
  std::function<void(const std::string& place)> onPlace;
};

/// Runs every operation once for each visit at each place inside it, or one in `step` of all these.
/// Returns how many were run.
int VisitEveryPlace(VisitedPlugin& plugin, int step = 1);

/// Runs operations, a few after each other, with random visits up to three deep. Returns how many
/// visits there were.
int VisitAtRandom(VisitedPlugin& plugin, int lives, unsigned seed);

}  // namespace testing
}  // namespace rotacasts
