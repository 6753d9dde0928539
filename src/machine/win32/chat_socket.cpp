#include "machine/chat_socket.h"

#include <string>

#include "base/runtime_error.h"
#include "com/com_support.h"
#include "machine/win32/sockets.h"

namespace rotacasts::host {

struct ChatSocket::Handle {
  win32::UdpSocket socket;
};

ChatSocket::ChatSocket() : handle_(std::make_unique<Handle>()) {}
ChatSocket::~ChatSocket() = default;

void ChatSocket::Send(std::uint16_t port, std::string_view bytes) {
  const sockaddr_in target = win32::LoopbackAddress(port);
  const int sent = ::sendto(handle_->socket.Get(), bytes.data(), static_cast<int>(bytes.size()), 0,
                            reinterpret_cast<const sockaddr*>(&target), sizeof target);
  if (sent != static_cast<int>(bytes.size())) {
    throw RuntimeError(static_cast<std::int32_t>(ErrorNumber::DeviceIoError),
                       "cannot send to port " + std::to_string(port) + " (" +
                           win32::DescribeResult(::WSAGetLastError()) + ")");
  }
}

}  // namespace rotacasts::host
