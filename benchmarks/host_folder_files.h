// The files of a benchmark's temporary host folder.
#pragma once

#include "support/host_folder.h"

namespace rotacasts::bench {

/// The bytes of a message file with this many messages, which start with `first`, and both options.
inline std::string MessageFileOf(int messages, const std::string& first = "Message") {
  std::string bytes = "[Messages]\r\n";
  for (int i = 1; i <= messages; ++i) {
    bytes += std::to_string(i) + "=" + first + " number " + std::to_string(i) + " of the list\r\n";
  }
  return bytes + "[Options]\r\nEnable=1\r\nInterval=1\r\n";
}

}  // namespace rotacasts::bench
