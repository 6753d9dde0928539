// GoogleTest for a compiler without the standard library's threads: what it uses of them serves its
// own tests only.
#pragma once

#define GTEST_HAS_NOTIFICATION_ 1

namespace testing::internal {

struct Notification {
  void Notify() {}
  void WaitForNotification() {}
};

}  // namespace testing::internal
