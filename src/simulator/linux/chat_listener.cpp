#include "simulator/chat_listener.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

#include "base/runtime_error.h"

namespace rotacasts::simulator {
namespace {

[[noreturn]] void Raise(std::uint16_t port) {
  throw RuntimeError(ErrorNumber::DeviceIoError, "cannot listen on port " + std::to_string(port) +
                                                     " (" + std::strerror(errno) + ")");
}

}  // namespace

struct ChatListener::Handle {
  int descriptor = -1;
  std::uint16_t port = 0;
  ~Handle() { ::close(descriptor); }
};

ChatListener::ChatListener(std::uint16_t port) : handle_(std::make_unique<Handle>()) {
  handle_->descriptor = ::socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0);
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_port = htons(port);
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  auto* const generic = reinterpret_cast<sockaddr*>(&address);
  socklen_t size = sizeof address;
  if (::bind(handle_->descriptor, generic, size) != 0) Raise(port);
  if (::getsockname(handle_->descriptor, generic, &size) != 0) Raise(port);
  handle_->port = ntohs(address.sin_port);
}

ChatListener::~ChatListener() = default;

std::uint16_t ChatListener::Port() const {
  return handle_->port;
}

std::optional<std::string> ChatListener::Receive(std::chrono::milliseconds within) {
  pollfd source{handle_->descriptor, POLLIN, 0};
  if (::poll(&source, 1, static_cast<int>(within.count())) <= 0) return std::nullopt;
  std::string text(0x10000, '\0');
  const ssize_t size = ::recv(handle_->descriptor, text.data(), text.size(), 0);
  if (size < 0) return std::nullopt;
  text.resize(static_cast<std::size_t>(size));
  return text;
}

}  // namespace rotacasts::simulator
