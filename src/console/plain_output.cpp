#include "console/plain_output.h"

#include <cstdio>

#include "base/text.h"

namespace rotacasts::host {
namespace {

constexpr int kLead = 0xC2;  // of U+0080 to U+00BF in UTF-8

char Shown(char byte) {
  return IsControl(byte) && byte != '\n' ? '?' : byte;
}

}  // namespace

int PlainOutput::overflow(int character) {
  if (character == EOF) return 0;
  const int byte = character & 0xFF;
  if (holdsLead_ && byte >= 0x80 && byte < 0xA0) {
    holdsLead_ = false;
    target_.put('?');
    return character;
  }
  if (holdsLead_) target_.put(static_cast<char>(kLead));
  holdsLead_ = byte == kLead;
  if (!holdsLead_) target_.put(Shown(static_cast<char>(byte)));
  return target_ ? character : EOF;
}

int PlainOutput::sync() {
  target_.flush();
  return target_ ? 0 : -1;
}

}  // namespace rotacasts::host
