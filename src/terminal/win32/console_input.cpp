#include "terminal/win32/console_input.h"

#include <algorithm>
#include <memory>
#include <string>

#include "com/com_support.h"
#include "com/unique_handle.h"
#include "terminal/terminal.h"

namespace rotacasts::host {
namespace {

struct Receiver {
  std::function<bool(std::optional<std::string>)> deliver;
  ConsoleReader lines = {};
};

/// The next bytes of the input; empty at its end. A console is read as UTF-16 because single-byte
/// reading loses the characters that its code page lacks.
std::string ReadPiece(HANDLE input) {
  DWORD count = 0;
  DWORD mode = 0;
  if (::GetConsoleMode(input, &mode) != FALSE) {
    wchar_t wide[2048];
    if (::ReadConsoleW(input, wide, 2048, &count, nullptr) == FALSE) return {};
    return win32::FromWide({wide, count});
  }
  char bytes[4096];
  if (::ReadFile(input, bytes, sizeof bytes, &count, nullptr) == FALSE) return {};
  return {bytes, count};
}

DWORD WINAPI DeliverLines(void* parameter) {
  const std::unique_ptr<Receiver> receiver(static_cast<Receiver*>(parameter));
  try {
    for (bool hasMore = true; hasMore;) {
      std::optional<std::string> line = receiver->lines.Next();
      hasMore = line.has_value();
      if (!receiver->deliver(std::move(line))) break;
    }
  } catch (...) {  // out of memory: only the console stops
  }
  return 0;
}

}  // namespace

std::optional<std::string> ConsoleReader::Next() {
  std::string line;
  for (bool isWhole = false; !isWhole;) {
    if (at_ == piece_.size()) {
      piece_ = ReadPiece(input_);
      at_ = 0;
    }
    if (piece_.empty()) {  // a last line needs no line feed
      if (line.empty()) return std::nullopt;
      break;
    }
    const std::size_t end = std::min(piece_.find('\n', at_), piece_.size());
    line.append(piece_, at_, std::min(end - at_, kLongestLine + 1 - line.size()));
    isWhole = end < piece_.size();
    at_ = end + (isWhole ? 1 : 0);
  }
  if (line.ends_with('\r')) line.pop_back();
  return line;
}

void ReadConsoleLines(std::function<bool(std::optional<std::string>)> deliver) {
  auto receiver = std::make_unique<Receiver>(Receiver{std::move(deliver)});
  const win32::UniqueHandle thread(
      ::CreateThread(nullptr, 0, DeliverLines, receiver.get(), 0, nullptr));
  if (thread) static_cast<void>(receiver.release());
}

}  // namespace rotacasts::host
