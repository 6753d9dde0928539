#include "component/server.h"

#include <cstdlib>
#include <utility>

#include "com/entry.h"

namespace rotacasts::win32 {
namespace {

// Stays when the DLL is taken out with its process: there is nobody left to release to.
Server* theServer = nullptr;

constexpr std::int32_t kMinute = 60000;  // milliseconds

/// How long a timer's minute lasts. The environment can shorten it so that a run can be watched.
std::int32_t MinuteLength() {
  wchar_t text[16];
  const DWORD size = ::GetEnvironmentVariableW(L"ROTACASTS_MINUTE_MS", text, 16);
  const long length = size > 0 && size < 16 ? std::wcstol(text, nullptr, 10) : 0;
  return length > 0 && length < kMinute ? static_cast<std::int32_t>(length) : kMinute;
}

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
    : module(instance),
      toolkit(instance, MinuteLength()),
      state(Platform{module, components, clock, toolkit}) {}

PluginState& Server::State() {
  if (!composition_) composition_ = std::make_unique<Composition>(module_);
  return composition_->state;
}

bool Server::CanUnload() {
  if (holds_ > 0 || Entry::IsAnyUnderWay()) return false;
  if (composition_ && composition_->state.window.IfLoaded()) return false;
  const Entry entry;  // a component that is let go of may run a message loop
  composition_.reset();
  return holds_ == 0 && !composition_;
}

}  // namespace rotacasts::win32
