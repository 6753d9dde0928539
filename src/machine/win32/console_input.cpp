#include "machine/win32/console_input.h"

#include <memory>
#include <string>

#include "com/com_support.h"
#include "machine/win32/unique_handle.h"

namespace rotacasts::host {
namespace {

struct Lines {
  HANDLE input;
  HWND window;
  UINT message;
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

bool PostLine(const Lines& reader, std::string line) {
  if (line.ends_with('\r')) line.pop_back();
  auto copy = std::make_unique<std::string>(std::move(line));
  if (::PostMessageW(reader.window, reader.message, 0, reinterpret_cast<LPARAM>(copy.get())) ==
      FALSE) {
    return false;
  }
  static_cast<void>(copy.release());
  return true;
}

void ReadLines(const Lines& reader) {
  std::string text;
  for (std::string piece = ReadPiece(reader.input); !piece.empty();
       piece = ReadPiece(reader.input)) {
    text += piece;
    for (auto end = text.find('\n'); end != text.npos; end = text.find('\n')) {
      if (!PostLine(reader, text.substr(0, end))) return;
      text.erase(0, end + 1);
    }
  }
  if (!text.empty()) PostLine(reader, text);  // a last line without a line feed
}

DWORD WINAPI RunReader(void* parameter) {
  const std::unique_ptr<Lines> reader(static_cast<Lines*>(parameter));
  try {
    ReadLines(*reader);
  } catch (...) {  // out of memory: only the console stops
  }
  return 0;
}

}  // namespace

void PostConsoleLines(HWND window, UINT message) {
  auto reader = std::make_unique<Lines>(Lines{::GetStdHandle(STD_INPUT_HANDLE), window, message});
  const win32::UniqueHandle thread(::CreateThread(nullptr, 0, RunReader, reader.get(), 0, nullptr));
  if (thread) static_cast<void>(reader.release());
}

}  // namespace rotacasts::host
