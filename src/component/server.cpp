#include "component/server.h"

#include <utility>

#include "com/entry.h"

namespace rotacasts::win32 {
namespace {

// Not deleted if the plugin still runs when its process ends: the components are gone by then.
Server* theServer = nullptr;

}  // namespace

Server& Server::Get() {
  return *theServer;
}

void Server::Attach(HINSTANCE module) {
  theServer = new Server(module);
}

void Server::Detach() {
  if (!theServer->composition_) delete std::exchange(theServer, nullptr);
}

Server::Composition::Composition(HINSTANCE instance)
    : module(instance), toolkit(instance), state(Platform{module, components, clock, toolkit}) {}

PluginState& Server::State() {
  if (!composition_) composition_ = std::make_unique<Composition>(module_);
  return composition_->state;
}

void Server::ShortenMinute(std::int32_t milliseconds) {
  if (composition_) composition_->toolkit.ShortenMinute(milliseconds);
}

bool Server::CanUnload() {
  if (holds_ > 0 || Entry::IsAnyUnderWay()) return false;
  if (composition_ && composition_->state.window.IfLoaded()) return false;
  const Entry entry;  // releasing a component may run a message loop
  composition_.reset();
  return holds_ == 0 && !composition_;
}

}  // namespace rotacasts::win32
