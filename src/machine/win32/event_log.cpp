#include "machine/win32/event_log.h"

#include <cstdio>

#include "com/com_support.h"

namespace rotacasts::host {
namespace {

constexpr const wchar_t* kSource = L"rotacasts-host";
constexpr const wchar_t* kKey =
    L"SYSTEM\\CurrentControlSet\\Services\\EventLog\\Application\\rotacasts-host";
constexpr DWORD kLine = 1;  // the one text of event_texts.mc: the line itself

}  // namespace

void RegisterEvents(const std::wstring& program) {
  HKEY key = nullptr;
  if (::RegCreateKeyExW(HKEY_LOCAL_MACHINE, kKey, 0, nullptr, 0, KEY_SET_VALUE, nullptr, &key,
                        nullptr) != ERROR_SUCCESS) {
    return;
  }
  const DWORD types = EVENTLOG_INFORMATION_TYPE;
  ::RegSetValueExW(key, L"EventMessageFile", 0, REG_SZ,
                   reinterpret_cast<const BYTE*>(program.c_str()),
                   static_cast<DWORD>((program.size() + 1) * sizeof(wchar_t)));
  ::RegSetValueExW(key, L"TypesSupported", 0, REG_DWORD, reinterpret_cast<const BYTE*>(&types),
                   sizeof types);
  ::RegCloseKey(key);
}

void UnregisterEvents() {
  ::RegDeleteKeyW(HKEY_LOCAL_MACHINE, kKey);
}

EventLog::EventLog() : log_(::RegisterEventSourceW(nullptr, kSource)) {}

EventLog::~EventLog() {
  Report();
  if (log_ != nullptr) ::DeregisterEventSource(log_);
}

int EventLog::overflow(int character) {
  if (character == '\n') {
    Report();
  } else if (character != EOF) {
    line_ += static_cast<char>(character);
  }
  return 0;
}

void EventLog::Report() {
  if (line_.empty()) return;
  const std::wstring wide = win32::ToWide(line_);
  const wchar_t* texts[] = {wide.c_str()};
  ::ReportEventW(log_, EVENTLOG_INFORMATION_TYPE, 0, kLine, nullptr, 1, 0, texts, nullptr);
  line_.clear();
}

}  // namespace rotacasts::host
