#include "host/base64.h"

#include <openssl/evp.h>

#include "platform/runtime_error.h"

namespace rotacasts::host {

std::string EncodeBase64(std::string_view bytes) {
  std::string text((bytes.size() + 2) / 3 * 4 + 1, '\0');  // the library ends it with a NUL
  const int size = EVP_EncodeBlock(reinterpret_cast<unsigned char*>(text.data()),
                                   reinterpret_cast<const unsigned char*>(bytes.data()),
                                   static_cast<int>(bytes.size()));
  text.resize(static_cast<std::size_t>(size));
  return text;
}

std::string DecodeBase64(std::string_view text) {
  // The library skips blanks at the ends, takes "=" for a zero anywhere and counts the padding in.
  constexpr std::string_view kDigits =
      "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  const std::size_t padding = text.ends_with("==") ? 2 : text.ends_with("=") ? 1 : 0;
  const std::string_view digits = text.substr(0, text.size() - padding);
  std::string bytes(text.size() / 4 * 3, '\0');
  if (text.size() % 4 != 0 || digits.find_first_not_of(kDigits) != digits.npos ||
      EVP_DecodeBlock(reinterpret_cast<unsigned char*>(bytes.data()),
                      reinterpret_cast<const unsigned char*>(text.data()),
                      static_cast<int>(text.size())) < 0) {
    throw RuntimeError(ErrorNumber::InvalidProcedureCall, "the text is not Base64");
  }
  bytes.resize(bytes.size() - padding);
  return bytes;
}

}  // namespace rotacasts::host
