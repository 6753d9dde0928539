// Lets GoogleTest compile without the standard library's threads, which only its own tests need.
#pragma once

#define GTEST_HAS_NOTIFICATION_ 1

namespace testing::internal {

struct Notification {
  void Notify() {}
  void WaitForNotification() {}
};

}  // namespace testing::internal
