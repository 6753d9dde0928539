#include "simulator/chat_listener.h"

#include <algorithm>

#include "base/runtime_error.h"
#include "com/com_support.h"
#include "machine/win32/sockets.h"
#include "simulator/process.h"

namespace rotacasts::simulator {
namespace {

[[noreturn]] void Raise(std::uint16_t port) {
  throw RuntimeError(ErrorNumber::DeviceIoError,
                     "cannot listen on port " + std::to_string(port) + " (" +
                         win32::DescribeResult(::WSAGetLastError()) + ")");
}

}  // namespace

struct ChatListener::Handle {
  win32::UdpSocket socket;
  std::uint16_t port = 0;
};

ChatListener::ChatListener(std::uint16_t port) : handle_(std::make_unique<Handle>()) {
  sockaddr_in address = win32::LoopbackAddress(port);
  auto* const generic = reinterpret_cast<sockaddr*>(&address);
  int size = sizeof address;
  if (::bind(handle_->socket.Get(), generic, size) != 0) Raise(port);
  if (::getsockname(handle_->socket.Get(), generic, &size) != 0) Raise(port);
  handle_->port = ::ntohs(address.sin_port);
}

ChatListener::~ChatListener() = default;

std::uint16_t ChatListener::Port() const {
  return handle_->port;
}

std::optional<std::string> ChatListener::Receive(std::chrono::milliseconds within) {
  // A request to end does not interrupt a wait for a socket, so the wait is split into short
  // pieces.
  constexpr std::chrono::milliseconds kPiece(100);
  for (auto left = within; !EndRequested(); left -= kPiece) {
    const auto piece = static_cast<long>(std::min(left, kPiece).count());
    timeval wait{piece / 1000, piece % 1000 * 1000};
    fd_set sources;
    FD_ZERO(&sources);
    FD_SET(handle_->socket.Get(), &sources);
    if (::select(0, &sources, nullptr, nullptr, &wait) > 0) break;
    if (left <= kPiece) return std::nullopt;
  }
  if (EndRequested()) return std::nullopt;
  std::string text(0x10000, '\0');
  const int size = ::recv(handle_->socket.Get(), text.data(), static_cast<int>(text.size()), 0);
  if (size < 0) return std::nullopt;
  text.resize(static_cast<std::size_t>(size));
  return text;
}

}  // namespace rotacasts::simulator
