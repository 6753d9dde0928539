#include "plugin/plugin_state.h"

#include <utility>

namespace rotacasts {

PluginState::PluginState(Platform platform, const MakeReporter& makeReporter)
    : services(platform),
      ownedReporter(makeReporter ? makeReporter(services, tables)
                                 : std::make_unique<ErrorReporter>(services, tables)),
      game(services, tables, reporter),
      store(services, tables, reporter),
      window(services, tables, reporter, store),
      broadcast(services, tables, reporter, store, window),
      profiles(services, tables, reporter, game, window),
      embedding(services, tables, reporter, profiles, window),
      remote(services, tables, reporter, store, window,
             [this](std::int32_t index, const ProfileData& PDAT) {
               profiles.SetProfileData(index, PDAT);
             }) {
  window.onTick = [this](std::int16_t index) { broadcast.tmrRT_Timer(index); };
}

PluginState::~PluginState() {
  window.Unload();
}

void PluginState::Main() {
  if (std::exchange(isStarted_, true)) return;
  Guard(reporter, {"Main", tables.currentWindowProfile}, [&](Step& at) {
    at(1);
    services.FindHostFolder();
    at(3);
    services.CreateUtility();
    at(4);
    services.CreateMemory();
  });
}

}  // namespace rotacasts
