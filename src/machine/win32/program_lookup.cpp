#include "machine/program_lookup.h"

#include "com/com_support.h"
#include "machine/win32/program_file.h"

namespace rotacasts {

std::wstring win32::FindProgram(const std::string& name) {
  const std::wstring wide = ToWide(name);
  wchar_t path[MAX_PATH];
  const DWORD size = ::SearchPathW(nullptr, wide.c_str(), L".exe", MAX_PATH, path, nullptr);
  return size > 0 && size < MAX_PATH ? std::wstring(path, size) : std::wstring();
}

bool win32::IsBatchFile(const std::wstring& file) {
  const auto hasEnding = [&](const wchar_t* ending) {
    return file.size() >= 4 && ::_wcsicmp(file.c_str() + file.size() - 4, ending) == 0;
  };
  return hasEnding(L".bat") || hasEnding(L".cmd");
}

std::string host::WhyNotStartable(const std::string& program) {
  const std::wstring file = win32::FindProgram(program);
  if (file.empty()) return "is not there";
  const DWORD attributes = ::GetFileAttributesW(file.c_str());
  if ((attributes & FILE_ATTRIBUTE_DIRECTORY) != 0) return "is a folder";
  if (win32::IsBatchFile(file)) {
    return "is a batch file, whose shell would take a message for a command; name a program";
  }
  return {};
}

}  // namespace rotacasts
