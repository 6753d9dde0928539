// One host a folder. One implementation per platform.
#pragma once

#include <memory>
#include <string>

namespace rotacasts::host {

/// Holds `host.lock` in the host folder, which says who holds it: the process and since when. The
/// system lets go of it when the process ends, however it ends.
class HostLock {
 public:
  /// Null when another host holds it; `holder` is then what that one has written there. Raises what
  /// keeps the file from being made.
  static std::unique_ptr<HostLock> Take(const std::string& hostFolder, const std::string& words,
                                        std::string& holder);
  ~HostLock();
  HostLock(const HostLock&) = delete;
  HostLock& operator=(const HostLock&) = delete;

 private:
  struct File;
  explicit HostLock(std::unique_ptr<File> file);
  std::unique_ptr<File> file_;
};

/// The number that the system knows this process by.
long OwnProcessId();

}  // namespace rotacasts::host
