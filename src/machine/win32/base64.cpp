#include "machine/base64.h"

// clang-format off
#include "com/windows_api.h"
#include <wincrypt.h>
// clang-format on

#include "base/runtime_error.h"

namespace rotacasts::host {

std::string EncodeBase64(std::string_view bytes) {
  if (bytes.empty()) return {};
  const auto* data = reinterpret_cast<const BYTE*>(bytes.data());
  const auto count = static_cast<DWORD>(bytes.size());
  constexpr DWORD kForm = CRYPT_STRING_BASE64 | CRYPT_STRING_NOCRLF;
  DWORD size = 0;  // the first call counts the NUL, the second does not
  std::string text;
  if (::CryptBinaryToStringA(data, count, kForm, nullptr, &size) == FALSE) {
    throw RuntimeError(ErrorNumber::OutOfMemory);
  }
  text.resize(size);
  ::CryptBinaryToStringA(data, count, kForm, text.data(), &size);
  text.resize(size);
  return text;
}

std::string DecodeBase64(std::string_view text) {
  std::string bytes(text.size(), '\0');
  auto size = static_cast<DWORD>(bytes.size());
  const bool decoded =
      !text.empty() && ::CryptStringToBinaryA(
                           text.data(), static_cast<DWORD>(text.size()), CRYPT_STRING_BASE64,
                           reinterpret_cast<BYTE*>(bytes.data()), &size, nullptr, nullptr) != FALSE;
  bytes.resize(decoded ? size : 0);
  // The system skips blanks and accepts sloppy endings, so the result must encode to the same text.
  if (EncodeBase64(bytes) != text) {
    throw RuntimeError(ErrorNumber::InvalidProcedureCall, "the text is not Base64");
  }
  return bytes;
}

}  // namespace rotacasts::host
