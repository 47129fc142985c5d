#pragma once

#include <atomic>
#include <functional>
#include <thread>

namespace clipfix::cli {

// Watches for Ctrl-C, a hang-up or a polite kill while it lives. The first one calls `onInterrupt`
// on a thread of its own, where it may lock and allocate; a second one ends the process at once.
// Threads started after it do not take these signals themselves.
class InterruptWatch {
  public:
    explicit InterruptWatch(std::function<void()> onInterrupt);
    InterruptWatch(const InterruptWatch&) = delete;
    InterruptWatch& operator=(const InterruptWatch&) = delete;
    ~InterruptWatch();

    [[nodiscard]] bool WasInterrupted() const { return interrupted_; }

  private:
    void Watch();

    std::function<void()> onInterrupt_;
    std::atomic<bool> interrupted_{false};
    std::atomic<bool> ended_{false};
    std::thread thread_;
};

}  // namespace clipfix::cli
