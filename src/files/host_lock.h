// Lets only one host use a folder. One implementation per platform.
#pragma once

#include <memory>
#include <string>

namespace rotacasts::host {

/// Locks `host.lock` in the host folder and writes there who holds it. The system releases the lock
/// when the process ends, even after a crash; the file stays.
class HostLock {
 public:
  /// Takes the lock if it is free, and writes "process N since `time`" to the file. Errors: 70 if
  /// the file cannot be opened or written.
  HostLock(const std::string& hostFolder, const std::string& time);
  ~HostLock();
  HostLock(const HostLock&) = delete;
  HostLock& operator=(const HostLock&) = delete;

  /// What the host that holds the lock wrote; empty if this object holds it.
  const std::string& Holder() const { return holder_; }

 private:
  struct File;
  std::unique_ptr<File> file_;
  std::string holder_;
};

}  // namespace rotacasts::host
