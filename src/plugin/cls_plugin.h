// The class that the host creates and calls.
#pragma once

#include <cstdint>
#include <string>

#include "plugin/descriptor.h"
#include "plugin/plugin_state.h"

namespace rotacasts {

/// The members of the dispatch interface _clsPlugin, called by the host on its user-interface
/// thread. Every object shares the one state, which the first one starts. Errors are reported, not
/// passed to the host; only HideInterface, and GetMessagesRem where it says so, let them through.
/// Arguments named fName are accepted and not used.
class clsPlugin {
 public:
  explicit clsPlugin(PluginState& state) : state_(state) { state_.Main(); }

  /// The plugin's descriptor; needs nothing set up, like GetPrivis.
  PLUGIN GetData() const { return DescribePlugin(state_.services.Version()); }
  /// The privileges that an administrator can be granted.
  HostValue GetPrivis() const { return DescribePrivileges(); }

  /// Shows the profile's settings inside the host window `PHWND` and starts its broadcasts.
  void LoadInterface(std::int32_t Index, forms::WindowHandle PHWND, const HostValue& PDAT,
                     const std::string& fName = {}) {
    static_cast<void>(fName);
    state_.embedding.LoadInterface(Index, PHWND, ProfileData(PDAT));
  }
  /// Hides the settings window; broadcasts go on.
  void HideInterface(const std::string& fName = {}) {
    static_cast<void>(fName);
    state_.embedding.HideInterface();
  }
  /// Closes the settings window and stops every profile.
  void UnLoadInterface(const std::string& fName) {
    static_cast<void>(fName);
    state_.embedding.UnLoadInterface();
  }
  /// Stops one profile.
  void DisableProfile(std::int32_t Index) { state_.profiles.DisableProfile(Index); }

  // What a remote administrator asks for, through the host: RemoteCommands says what each takes and
  // answers. `Data` is omitted where it is not read.
  std::string GetMessagesRem(std::int32_t Index, const HostValue& PDAT,
                             const HostValue& Data = kOmitted) {
    static_cast<void>(Data);
    return state_.remote.GetMessagesRem(Index, ProfileData(PDAT));
  }
  std::string AddMessageRem(std::int32_t Index, const HostValue& PDAT,
                            const HostValue& Data = kOmitted) {
    return state_.remote.AddMessageRem(Index, ProfileData(PDAT), Data);
  }
  std::string EnableRTRem(std::int32_t Index, const HostValue& PDAT,
                          const HostValue& Data = kOmitted) {
    return state_.remote.EnableRTRem(Index, ProfileData(PDAT), Data);
  }
  std::string ChangeIntervalRem(std::int32_t Index, const HostValue& PDAT,
                                const HostValue& Data = kOmitted) {
    return state_.remote.ChangeIntervalRem(Index, ProfileData(PDAT), Data);
  }
  std::string MoveMessageDownRem(std::int32_t Index, const HostValue& PDAT,
                                 const HostValue& Data = kOmitted) {
    return state_.remote.MoveMessageDownRem(Index, ProfileData(PDAT), Data);
  }
  std::string MoveMessageUpRem(std::int32_t Index, const HostValue& PDAT,
                               const HostValue& Data = kOmitted) {
    return state_.remote.MoveMessageUpRem(Index, ProfileData(PDAT), Data);
  }
  std::string DeleteMessageRem(std::int32_t Index, const HostValue& PDAT,
                               const HostValue& Data = kOmitted) {
    return state_.remote.DeleteMessageRem(Index, ProfileData(PDAT), Data);
  }

  static inline const HostValue kOmitted{HostValue::Missing{}};

 private:
  PluginState& state_;
};

}  // namespace rotacasts
