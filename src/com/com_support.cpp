#include "com/com_support.h"

#include <cstdio>

#include "base/runtime_error.h"

namespace rotacasts::win32 {

std::wstring ToWide(std::string_view text) {
  const int size = static_cast<int>(text.size());
  std::wstring wide(
      static_cast<std::size_t>(::MultiByteToWideChar(CP_UTF8, 0, text.data(), size, nullptr, 0)),
      L'\0');
  ::MultiByteToWideChar(CP_UTF8, 0, text.data(), size, wide.data(), static_cast<int>(wide.size()));
  return wide;
}

std::string FromWide(std::wstring_view text) {
  const int size = static_cast<int>(text.size());
  std::string narrow(static_cast<std::size_t>(::WideCharToMultiByte(CP_UTF8, 0, text.data(), size,
                                                                    nullptr, 0, nullptr, nullptr)),
                     '\0');
  ::WideCharToMultiByte(CP_UTF8, 0, text.data(), size, narrow.data(),
                        static_cast<int>(narrow.size()), nullptr, nullptr);
  return narrow;
}

Bstr::Bstr(std::string_view text) {
  const std::wstring wide = ToWide(text);
  text_ = ::SysAllocStringLen(wide.data(), static_cast<UINT>(wide.size()));
  if (text_ == nullptr) throw RuntimeError(ErrorNumber::OutOfMemory);
}

std::string FromBstr(BSTR text) {
  return text != nullptr ? FromWide({text, ::SysStringLen(text)}) : std::string();
}

std::string DescribeResult(HRESULT result) {
  wchar_t text[512];
  DWORD size = ::FormatMessageW(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr,
                                static_cast<DWORD>(result), 0, text, 512, nullptr);
  while (size > 0 && (text[size - 1] == L'\n' || text[size - 1] == L'\r')) --size;
  if (size > 0) return FromWide({text, size});
  char code[40];
  std::snprintf(code, sizeof code, "Automation error 0x%08lX", static_cast<unsigned long>(result));
  return code;
}

}  // namespace rotacasts::win32
