#include "terminal/win32/console_output.h"

#include <atomic>
#include <cstdio>
#include <utility>

#include "com/com_support.h"
#include "com/unique_handle.h"
#include "machine/win32/lock.h"
#include "terminal/unread_lines.h"

namespace rotacasts::host {
namespace {

constexpr DWORD kLongestEnd = 1000;  // milliseconds for what is left at the end

win32::UniqueHandle NewEvent(bool isManual) {
  return win32::UniqueHandle(::CreateEventW(nullptr, isManual, FALSE, nullptr));
}

/// False if nobody can read it any more. A console takes UTF-16, whatever its code page.
bool WriteAll(HANDLE output, std::string_view bytes) {
  DWORD mode = 0;
  DWORD count = 0;
  if (::GetConsoleMode(output, &mode) != FALSE) {
    const std::wstring wide = win32::ToWide(bytes);
    return ::WriteConsoleW(output, wide.data(), static_cast<DWORD>(wide.size()), &count, nullptr);
  }
  for (; !bytes.empty(); bytes.remove_prefix(count)) {
    if (::WriteFile(output, bytes.data(), static_cast<DWORD>(bytes.size()), &count, nullptr) ==
        FALSE) {
      return false;
    }
  }
  return true;
}

}  // namespace

/// Belongs to the buffer and to the thread, which may be held up when the buffer ends.
struct ConsoleOutput::Writer {
  const HANDLE output = ::GetStdHandle(STD_OUTPUT_HANDLE);
  const win32::UniqueHandle hasMore = NewEvent(false);
  const win32::UniqueHandle isIdle = NewEvent(true);
  win32::Lock lock;
  UnreadLines lines;
  std::atomic<bool> isEnding = false;
  std::atomic<bool> isBroken = false;

  /// The text to write next; empty if there is none.
  std::string Next(std::size_t written);
  static DWORD WINAPI Run(void* parameter);
};

std::string ConsoleOutput::Writer::Next(std::size_t written) {
  const win32::Lock::Held held(lock);
  lines.Remove(written);
  if (isBroken) lines.Clear();
  if (lines.Bytes().empty()) ::SetEvent(isIdle.Get());
  return lines.Bytes();
}

DWORD WINAPI ConsoleOutput::Writer::Run(void* parameter) {
  const std::unique_ptr<std::shared_ptr<Writer>> owner(
      static_cast<std::shared_ptr<Writer>*>(parameter));
  Writer& writer = **owner;
  while (!writer.isEnding) {
    ::WaitForSingleObject(writer.hasMore.Get(), INFINITE);
    std::string next = writer.Next(0);
    while (!next.empty()) {
      writer.isBroken = !WriteAll(writer.output, next);
      next = writer.Next(next.size());
    }
  }
  return 0;
}

ConsoleOutput::ConsoleOutput() : writer_(std::make_shared<Writer>()) {
  auto owner = std::make_unique<std::shared_ptr<Writer>>(writer_);
  const win32::UniqueHandle thread(
      ::CreateThread(nullptr, 0, &Writer::Run, owner.get(), 0, nullptr));
  if (thread) static_cast<void>(owner.release());
}

ConsoleOutput::~ConsoleOutput() {
  ConsoleOutput::sync();
  writer_->isEnding = true;
  ::SetEvent(writer_->hasMore.Get());
  ::WaitForSingleObject(writer_->isIdle.Get(), kLongestEnd);
}

void ConsoleOutput::Flushed(std::string_view text) {
  const win32::Lock::Held held(writer_->lock);
  if (!writer_->isBroken) writer_->lines.Add(text);
  ::ResetEvent(writer_->isIdle.Get());
  ::SetEvent(writer_->hasMore.Get());
}

}  // namespace rotacasts::host
