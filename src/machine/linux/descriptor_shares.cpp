#include "machine/descriptor_shares.h"

#include <sys/resource.h>

namespace rotacasts::host {

const DescriptorShares& OwnDescriptorShares() {
  static const DescriptorShares shares = [] {
    constexpr rlim_t kPlenty = 65536;
    rlimit limit{};
    if (::getrlimit(RLIMIT_NOFILE, &limit) != 0) limit.rlim_cur = 1024;
    return ShareDescriptors(limit.rlim_cur < kPlenty ? limit.rlim_cur : kPlenty);
  }();
  return shares;
}

}  // namespace rotacasts::host
