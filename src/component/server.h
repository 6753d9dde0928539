// The DLL as a component server: its objects, and the plugin's state that they share.
#pragma once

#include <atomic>
#include <memory>

#include "com/win32_platform.h"
#include "com/windows_api.h"
#include "forms/win32/win32_toolkit.h"
#include "plugin/plugin_state.h"

namespace rotacasts::win32 {

/// Everything that the process has once. Only the DLL's entry points and objects use it.
class Server {
 public:
  /// The server of this process. Requires: Attach was called, when the DLL was loaded.
  static Server& Get();
  static void Attach(HINSTANCE module);
  /// The DLL is being unloaded and the process goes on.
  static void Detach();

  HINSTANCE Module() const { return module_; }
  /// The plugin's state, created on first use; the first clsPlugin object starts it.
  PluginState& State();
  /// Sets the length of a minute for timers set from now on, until the state is released. Does
  /// nothing before the state exists.
  void ShortenMinute(std::int32_t milliseconds);

  /// Counts what keeps the DLL loaded: its objects and the class factory's locks.
  void Hold() { ++holds_; }
  void Drop() { --holds_; }
  /// Whether the DLL can be unloaded: nothing holds it, none of its calls is on the stack, and no
  /// settings window exists, so nothing broadcasts. If so, releases the state; a later use creates
  /// a new one.
  bool CanUnload();

 private:
  explicit Server(HINSTANCE module) : module_(module) {}

  /// The state and everything it depends on, in the order of creation.
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
