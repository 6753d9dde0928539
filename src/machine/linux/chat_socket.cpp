#include "machine/chat_socket.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <string>

#include "base/runtime_error.h"

namespace rotacasts::host {

struct ChatSocket::Handle {
  int descriptor = ::socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0);
  ~Handle() { ::close(descriptor); }
};

ChatSocket::ChatSocket() : handle_(std::make_unique<Handle>()) {}
ChatSocket::~ChatSocket() = default;

void ChatSocket::Send(std::uint16_t port, std::string_view bytes) {
  sockaddr_in target{};
  target.sin_family = AF_INET;
  target.sin_port = htons(port);
  target.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  const ssize_t sent = ::sendto(handle_->descriptor, bytes.data(), bytes.size(), 0,
                                reinterpret_cast<const sockaddr*>(&target), sizeof target);
  if (sent != static_cast<ssize_t>(bytes.size())) {
    throw RuntimeError(ErrorNumber::DeviceIoError, "cannot send to port " + std::to_string(port) +
                                                       " (" + std::strerror(errno) + ")");
  }
}

}  // namespace rotacasts::host
