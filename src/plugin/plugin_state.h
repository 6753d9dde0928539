// The composition root: the process-wide state that every clsPlugin object shares.
#pragma once

#include "broadcast/broadcast_timer.h"
#include "plugin/embedding.h"
#include "store/remote_commands.h"

namespace rotacasts {

/// Everything the plugin consists of, wired together. One for the process, made when the plugin is
/// loaded and kept until it is unloaded; each test makes its own. What the platform bundle refers
/// to outlives it.
class PluginState {
 public:
  explicit PluginState(Platform platform);
  ~PluginState();
  PluginState(const PluginState&) = delete;
  PluginState& operator=(const PluginState&) = delete;

  /// Start-up, before anything else is asked for; once, whatever comes again. An error is reported
  /// under "Main", in a box within which the host may create a further object of this state; the
  /// plugin then lives on without what failed.
  void Main();

  ProfileTables tables;
  HostServices services;
  ErrorReporter reporter;
  GameReader game;
  MessageStore store;
  SettingsWindow window;
  BroadcastTimer broadcast;
  Profiles profiles;
  Embedding embedding;
  RemoteCommands remote;

 private:
  bool isStarted_ = false;
};

}  // namespace rotacasts
