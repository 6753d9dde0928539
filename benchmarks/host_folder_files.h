// A temporary folder with what a benchmark reads.
#pragma once

#include "support/host_folder.h"

namespace rotacasts::bench {

/// A message file of so many messages, which begin with `first`, and both options behind them.
inline std::string MessageFileOf(int messages, const std::string& first = "Message") {
  std::string bytes = "[Messages]\r\n";
  for (int i = 1; i <= messages; ++i) {
    bytes += std::to_string(i) + "=" + first + " number " + std::to_string(i) + " of the list\r\n";
  }
  return bytes + "[Options]\r\nEnable=1\r\nInterval=1\r\n";
}

}  // namespace rotacasts::bench
