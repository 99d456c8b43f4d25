// GoogleTest's class for tests of its own threads, in the words of a library that has no std::mutex. It comes
// in front of every source of GoogleTest on Windows; none of our tests starts a thread through GoogleTest.
#pragma once

#include <atomic>

namespace testing::internal {

class Notification {
  public:
    void Notify() { notified_ = true; }
    void WaitForNotification() {
        while (!notified_) {
        }
    }

  private:
    std::atomic<bool> notified_{false};
};

} // namespace testing::internal
