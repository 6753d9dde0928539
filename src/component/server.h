// The DLL as a component server: its objects, and the plugin's state that they share.
#pragma once

#include <atomic>
#include <memory>

#include "com/win32_platform.h"
#include "com/windows_api.h"
#include "forms/win32/win32_toolkit.h"
#include "plugin/plugin_state.h"

namespace rotacasts::win32 {

/// What the process has one of. Reached by the DLL's entry points and its objects only.
class Server {
 public:
  /// The server of this process; `Attach` has been called when the DLL was loaded.
  static Server& Get();
  static void Attach(HINSTANCE module);
  /// The DLL is being unloaded, and the process lives on.
  static void Detach();

  HINSTANCE Module() const { return module_; }
  /// The plugin's state; made, and the plugin started, at the first use.
  PluginState& State();
  /// How long a minute of the timers lasts that are set from now on, until the state is given back.
  void ShortenMinute(std::int32_t milliseconds);

  /// Counts what keeps the DLL loaded: its objects, and locks of the class factory.
  void Hold() { ++holds_; }
  void Drop() { --holds_; }
  /// Whether the DLL can be unloaded: nothing holds it, no call of it is on the stack, and no
  /// settings window is open, so nothing broadcasts. The state is given back then; a later use
  /// starts again.
  bool CanUnload();

 private:
  explicit Server(HINSTANCE module) : module_(module) {}

  /// Everything that the state stands on, in the order in which it is made.
  struct Composition {
    explicit Composition(HINSTANCE module);
    LoadedModule module;
    ComFactory components;
    SystemClock clock;
    Win32Toolkit toolkit;
    PluginState state;
  };

  const HINSTANCE module_;
  std::atomic<long> holds_ = 0;
  std::unique_ptr<Composition> composition_;
};

}  // namespace rotacasts::win32
