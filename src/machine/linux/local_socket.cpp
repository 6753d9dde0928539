#include "machine/linux/local_socket.h"

#include <fcntl.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <utility>

#include "base/runtime_error.h"

namespace rotacasts::host {
namespace {

constexpr mode_t kOwnerOnly = 0600;
constexpr int kWaiting = 16;  // connections that nobody has accepted yet

/// A socket's address in a folder. A path of this kind holds 107 bytes at most, so it goes through
/// the folder's descriptor, whatever the folder's path.
class Place {
 public:
  Place(const std::string& folder, const std::string& name)
      : path_(folder + "/" + name),
        folder_(::open(folder.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC)) {
    if (!folder_.IsOpen()) Raise();
    address_.sun_family = AF_UNIX;
    short_ = "/proc/self/fd/" + std::to_string(folder_.Get()) + "/" + name;
    std::strncpy(address_.sun_path, short_.c_str(), sizeof address_.sun_path - 1);
  }

  const sockaddr* Address() const { return reinterpret_cast<const sockaddr*>(&address_); }
  static constexpr socklen_t kSize = sizeof(sockaddr_un);
  const char* ShortPath() const { return short_.c_str(); }

  [[noreturn]] void Raise() const {
    const int problem = errno;
    ErrorNumber number = ErrorNumber::DeviceIoError;
    if (problem == EACCES || problem == EPERM) number = ErrorNumber::PermissionDenied;
    if (problem == ENOENT || problem == ECONNREFUSED) number = ErrorNumber::FileNotFound;
    throw RuntimeError(number, path_ + " (" + std::strerror(problem) + ")");
  }

 private:
  const std::string path_;
  const SocketDescriptor folder_;
  std::string short_;
  sockaddr_un address_{};
};

SocketDescriptor NewSocket(const Place& place) {
  SocketDescriptor made(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
  if (!made.IsOpen()) place.Raise();
  return made;
}

}  // namespace

SocketDescriptor::~SocketDescriptor() {
  if (IsOpen()) ::close(descriptor_);
}

SocketDescriptor::SocketDescriptor(SocketDescriptor&& other) noexcept
    : descriptor_(std::exchange(other.descriptor_, -1)) {}

SocketDescriptor& SocketDescriptor::operator=(SocketDescriptor&& other) noexcept {
  std::swap(descriptor_, other.descriptor_);
  return *this;
}

SocketDescriptor ListenInFolder(const std::string& folder, const std::string& name) {
  const Place place(folder, name);
  SocketDescriptor listening = NewSocket(place);
  struct stat status {};
  if (::lstat(place.ShortPath(), &status) == 0 && S_ISSOCK(status.st_mode)) {
    ::unlink(place.ShortPath());
  }
  // The file that bind makes has the mode of the socket.
  if (::fchmod(listening.Get(), kOwnerOnly) != 0 ||
      ::bind(listening.Get(), place.Address(), Place::kSize) != 0 ||
      ::listen(listening.Get(), kWaiting) != 0) {
    place.Raise();
  }
  return listening;
}

SocketDescriptor AcceptNext(const SocketDescriptor& listening) {
  return SocketDescriptor(
      ::accept4(listening.Get(), nullptr, nullptr, SOCK_CLOEXEC | SOCK_NONBLOCK));
}

SocketDescriptor ConnectInFolder(const std::string& folder, const std::string& name) {
  const Place place(folder, name);
  SocketDescriptor connected = NewSocket(place);
  if (::connect(connected.Get(), place.Address(), Place::kSize) != 0) place.Raise();
  return connected;
}

}  // namespace rotacasts::host
