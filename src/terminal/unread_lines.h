// What was printed and nobody has read yet.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace rotacasts::host {

/// Lines that wait for a reader, up to a bound. Lines beyond it are dropped; their number is one
/// more line once everything before has been read.
class UnreadLines {
 public:
  /// Takes text that ends where a flush was asked for: all of it if everything before has been
  /// read, because then somebody reads, however long the text is.
  void Add(std::string_view text);
  /// Takes bytes that are no lines, unless there is no room for them.
  void AddBytes(std::string_view bytes);

  const std::string& Bytes() const { return kept_; }
  /// Forgets the first bytes, which have been read.
  void Remove(std::size_t count);
  void Clear() { kept_.clear(), dropped_ = 0; }

  static constexpr std::size_t kMost = std::size_t{256} * 1024;  // bytes

 private:
  std::string kept_;
  std::int64_t dropped_ = 0;
};

}  // namespace rotacasts::host
