// One host a folder. One implementation per platform.
#pragma once

#include <memory>
#include <string>

namespace rotacasts::host {

/// Holds `host.lock` in the host folder, where it has written who holds it. The system lets go of
/// it when the process ends, however it ends; the file stays.
class HostLock {
 public:
  /// Writes " since `time`" after this process' number. Raises what keeps the file from being
  /// made or read.
  HostLock(const std::string& hostFolder, const std::string& time);
  ~HostLock();
  HostLock(const HostLock&) = delete;
  HostLock& operator=(const HostLock&) = delete;

  /// What the host that has it already wrote there; empty when this one holds it.
  const std::string& Holder() const { return holder_; }

 private:
  struct File;
  std::unique_ptr<File> file_;
  std::string holder_;
};

}  // namespace rotacasts::host
