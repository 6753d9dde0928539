// A disk that takes no more.
#pragma once

#include <sys/resource.h>

#include <csignal>

namespace rotacasts::testing {

/// No file of this process grows beyond so many bytes.
class FullDisk {
 public:
  explicit FullDisk(rlim_t bytes) {
    std::signal(SIGXFSZ, SIG_IGN);
    ::getrlimit(RLIMIT_FSIZE, &before_);
    const rlimit now{bytes, before_.rlim_max};
    ::setrlimit(RLIMIT_FSIZE, &now);
  }
  ~FullDisk() { ::setrlimit(RLIMIT_FSIZE, &before_); }
  FullDisk(const FullDisk&) = delete;
  FullDisk& operator=(const FullDisk&) = delete;

 private:
  rlimit before_{};
};

}  // namespace rotacasts::testing
