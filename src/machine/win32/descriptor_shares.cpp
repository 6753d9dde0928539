#include "machine/descriptor_shares.h"

namespace rotacasts::host {

// Windows has handles enough; the page's library waits for a thousand sockets at most.
const DescriptorShares& OwnDescriptorShares() {
  static const DescriptorShares shares = ShareDescriptors(1024);
  return shares;
}

}  // namespace rotacasts::host
