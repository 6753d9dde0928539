// Where a stream writes for a while.
#pragma once

#include <ostream>
#include <streambuf>

namespace rotacasts::host {

/// Redirects a stream to another buffer while this object exists.
class Redirection {
 public:
  Redirection(std::ostream& stream, std::streambuf& buffer)
      : stream_(stream), before_(stream.rdbuf(&buffer)) {}
  ~Redirection() { stream_.rdbuf(before_); }
  Redirection(const Redirection&) = delete;
  Redirection& operator=(const Redirection&) = delete;

 private:
  std::ostream& stream_;
  std::streambuf* const before_;
};

}  // namespace rotacasts::host
