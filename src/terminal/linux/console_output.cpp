#include "terminal/linux/console_output.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <utility>

namespace rotacasts::host {
namespace {

// A pipe with any room takes this much at once.
constexpr std::size_t kPiece = 4096;

/// Opens the standard output again, without blocking. Changing the mode of the inherited descriptor
/// would also change it for other programs on the same pipe or terminal. -1 if that fails or is not
/// needed.
int OpenWithoutWaiting() {
  struct stat status {};
  if (::fstat(STDOUT_FILENO, &status) != 0) return -1;
  if (!S_ISFIFO(status.st_mode) && !S_ISCHR(status.st_mode)) return -1;
  return ::open("/proc/self/fd/1", O_WRONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
}

bool HasRoom(int descriptor) {
  pollfd target{descriptor, POLLOUT, 0};
  return ::poll(&target, 1, 0) > 0;
}

}  // namespace

ConsoleOutput::ConsoleOutput(EventLoop& loop) : ConsoleOutput(loop, OpenWithoutWaiting()) {}

ConsoleOutput::ConsoleOutput(EventLoop& loop, int own)
    : loop_(loop), descriptor_(own >= 0 ? own : STDOUT_FILENO), isOwn_(own >= 0) {}

ConsoleOutput::~ConsoleOutput() {
  onBefore = onAfter = nullptr;
  ConsoleOutput::sync();
  loop_.Unwatch(descriptor_);
  if (isOwn_) ::close(descriptor_);
}

void ConsoleOutput::Flushed(std::string_view text) {
  if (onBefore) onBefore();
  if (!isBroken_) kept_.Add(text);
  if (onAfter) onAfter();
  WriteKept();
}

void ConsoleOutput::Write(std::string_view bytes) {
  if (!isBroken_) kept_.AddBytes(bytes);
  WriteKept();
}

void ConsoleOutput::WriteKept() {
  const std::string& bytes = kept_.Bytes();
  while (!bytes.empty() && (isOwn_ || HasRoom(descriptor_))) {
    const ssize_t count = ::write(descriptor_, bytes.data(), std::min(bytes.size(), kPiece));
    if (count < 0 && errno == EINTR) continue;
    isBroken_ = count < 0 && errno != EAGAIN;
    if (count < 0) break;
    kept_.Remove(static_cast<std::size_t>(count));
  }
  if (isBroken_) kept_.Clear();
  if (bytes.empty()) {
    loop_.Unwatch(descriptor_);
  } else {
    loop_.Watch(descriptor_, POLLOUT, [this](short) { WriteKept(); });
  }
}

}  // namespace rotacasts::host
