// The composition root: the process-wide state that every clsPlugin object shares.
#pragma once

#include <functional>
#include <memory>

#include "broadcast/broadcast_timer.h"
#include "plugin/embedding.h"
#include "store/remote_commands.h"

namespace rotacasts {

/// Everything the plugin consists of, wired together. One for the process, made when the plugin is
/// loaded and kept until it is unloaded; each test makes its own. What the platform bundle refers
/// to outlives it.
class PluginState {
 public:
  /// Creates the error reporter of a host that reports errors in another way than by boxes.
  using MakeReporter = std::function<std::unique_ptr<ErrorReporter>(const HostServices& services,
                                                                    const ProfileTables& tables)>;

  /// Without `makeReporter` the plugin's own reporter is used.
  explicit PluginState(Platform platform, const MakeReporter& makeReporter = {});
  ~PluginState();
  PluginState(const PluginState&) = delete;
  PluginState& operator=(const PluginState&) = delete;

  /// Start-up, before anything else is asked for; once, whatever comes again. An error is reported
  /// under "Main", in a box within which the host may create a further object of this state; the
  /// plugin then lives on without what failed.
  void Main();

  ProfileTables tables;
  HostServices services;
  const std::unique_ptr<ErrorReporter> ownedReporter;
  ErrorReporter& reporter = *ownedReporter;
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
