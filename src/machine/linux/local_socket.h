// A socket in a folder, through which programs of one machine talk to each other.
#pragma once

#include <string>

namespace rotacasts::host {

/// A descriptor that is closed with its owner.
class SocketDescriptor {
 public:
  explicit SocketDescriptor(int descriptor = -1) : descriptor_(descriptor) {}
  ~SocketDescriptor();
  SocketDescriptor(SocketDescriptor&& other) noexcept;
  SocketDescriptor& operator=(SocketDescriptor&& other) noexcept;

  bool IsOpen() const { return descriptor_ >= 0; }
  int Get() const { return descriptor_; }

 private:
  int descriptor_;
};

/// Listens at `name` in the folder, in place of what a host that was killed has left there. Only
/// this process's user and root can connect. Errors: 53 without the folder, 70 where this user may
/// not make it, else 57; each with the path and the reason.
SocketDescriptor ListenInFolder(const std::string& folder, const std::string& name);

/// The next program that has connected; closed if there is none. Neither this descriptor nor
/// another one of this file waits in a read or a write.
SocketDescriptor AcceptNext(const SocketDescriptor& listening);

/// Connects to the program that listens at `name` in the folder. Errors: 53 if none does, 70 if
/// another user's does, else 57; each with the path and the reason.
SocketDescriptor ConnectInFolder(const std::string& folder, const std::string& name);

}  // namespace rotacasts::host
