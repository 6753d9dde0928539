// 32-bit signed arithmetic that raises error 6 instead of wrapping.
#pragma once

#include <cstdint>

#include "base/runtime_error.h"

namespace rotacasts {

/// A 32-bit signed number, such as an address in a game server's process. A sum, difference or
/// product that leaves the range raises error 6, so formulas need no extra checks.
class Checked {
 public:
  constexpr Checked(std::int32_t value) : value_(value) {}  // NOLINT: plain numbers mix in freely
  constexpr std::int32_t Value() const { return value_; }

  friend Checked operator+(Checked a, Checked b) {
    std::int32_t sum = 0;
    return __builtin_add_overflow(a.value_, b.value_, &sum) ? Overflow() : sum;
  }
  friend Checked operator-(Checked a, Checked b) {
    std::int32_t difference = 0;
    return __builtin_sub_overflow(a.value_, b.value_, &difference) ? Overflow() : difference;
  }
  friend Checked operator*(Checked a, Checked b) {
    std::int32_t product = 0;
    return __builtin_mul_overflow(a.value_, b.value_, &product) ? Overflow() : product;
  }

 private:
  [[noreturn]] static std::int32_t Overflow() { throw RuntimeError(ErrorNumber::Overflow); }

  std::int32_t value_;
};

}  // namespace rotacasts
