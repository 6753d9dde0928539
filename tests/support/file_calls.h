// The calls by which this program changes files, for tests that watch them, let them fail, or do
// something of their own just before one.
#pragma once

#include <functional>
#include <string>

namespace rotacasts {
inline namespace testing {

struct FileCall {
  std::string name;  // of the system's function, but "exchange" and "move" for renameat2 with flags
  std::string path;
  std::string to = {};
  std::string bytes = {};
};

/// While it exists, `hook` is asked before every call, except in itself; it returns an errno value
/// with which the call fails, or 0. Nothing is flushed in truth.
class FileCalls {
 public:
  explicit FileCalls(std::function<int(const FileCall&)> hook);
  ~FileCalls();
  FileCalls(const FileCalls&) = delete;
  FileCalls& operator=(const FileCalls&) = delete;
};

/// False: a file system that knows no flags of renameat2.
inline bool hasExchange = true;

}  // namespace testing
}  // namespace rotacasts
