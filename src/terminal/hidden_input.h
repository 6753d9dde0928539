// Asking a person for what nobody may see. One implementation per platform.
#pragma once

#include <memory>
#include <string>

namespace rotacasts::host {

/// Reads lines of the standard input. While this object exists, a terminal does not show what is
/// typed. Only one may exist at a time.
class HiddenInput {
 public:
  HiddenInput();
  ~HiddenInput();
  HiddenInput(const HiddenInput&) = delete;
  HiddenInput& operator=(const HiddenInput&) = delete;

  /// Whether there is a person to be asked.
  bool IsTerminal() const;
  /// Waits for the next line, in UTF-8; empty at the end of the input.
  std::string Line();

 private:
  struct Parts;
  const std::unique_ptr<Parts> parts_;
};

}  // namespace rotacasts::host
