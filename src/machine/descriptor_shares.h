// How the host's parts share the descriptors that the system lets it have.
#pragma once

#include <cstddef>

namespace rotacasts::host {

/// The most that each part may use at a time, so that enough are left for the host's files. A part
/// that has used its share lets whoever comes next wait, or answers that it is busy.
struct DescriptorShares {
  std::size_t connections;   // to the page
  std::size_t ofOneAddress;  // of these
  std::size_t signIns;       // that wait for their passwords to be checked
  std::size_t programs;      // that say texts, each with two descriptors
  std::size_t consoles;      // of other processes
};

/// The shares of a process that may have `limit` descriptors open.
constexpr DescriptorShares ShareDescriptors(std::size_t limit) {
  constexpr std::size_t kKept = 64;  // for files, the console and the listening sockets
  const auto atMost = [](std::size_t most, std::size_t share) {
    return share < 1 ? 1 : share < most ? share : most;
  };
  const std::size_t shared = limit - (limit < 4 * kKept ? limit / 4 : kKept);
  const std::size_t connections = atMost(600, shared * 5 / 8);
  return {connections, atMost(200, connections / 3), atMost(8, connections / 2),
          atMost(240, shared / 8), atMost(16, shared / 16)};
}

/// The shares of this process, by its limit when it first asks.
const DescriptorShares& OwnDescriptorShares();

}  // namespace rotacasts::host
