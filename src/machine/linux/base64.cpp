#include "machine/base64.h"

#include <sodium.h>

#include "base/runtime_error.h"

namespace rotacasts::host {
namespace {

constexpr int kVariant = sodium_base64_VARIANT_ORIGINAL;

}  // namespace

std::string EncodeBase64(std::string_view bytes) {
  std::string text(sodium_base64_encoded_len(bytes.size(), kVariant), '\0');
  sodium_bin2base64(text.data(), text.size(), reinterpret_cast<const unsigned char*>(bytes.data()),
                    bytes.size(), kVariant);
  text.pop_back();  // the library ends it with a NUL
  return text;
}

std::string DecodeBase64(std::string_view text) {
  std::string bytes(text.size(), '\0');
  std::size_t size = 0;
  if (sodium_base642bin(reinterpret_cast<unsigned char*>(bytes.data()), bytes.size(), text.data(),
                        text.size(), nullptr, &size, nullptr, kVariant) != 0) {
    throw RuntimeError(ErrorNumber::InvalidProcedureCall, "the text is not Base64");
  }
  bytes.resize(size);
  return bytes;
}

}  // namespace rotacasts::host
