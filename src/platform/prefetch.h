#pragma once

#include <condition_variable>
#include <cstdint>
#include <mutex>
#include <thread>

#include "platform/file.h"

namespace clipfix::platform {

// Has the system read on ahead of a place that moves through a file from front to back, on a thread
// of its own, so that whoever looks at a few bytes here and there does not wait for a medium each
// time. What was read so is at hand when it is copied later; so it is done for files that fit well
// into memory, and not for small ones. Advice only: nothing hangs on it.
class Prefetch {
  public:
    // `file` must outlive the object.
    explicit Prefetch(const ReadableFile& file);
    Prefetch(const Prefetch&) = delete;
    Prefetch& operator=(const Prefetch&) = delete;
    ~Prefetch();

    // The place is now at `position`, in bytes. Costs next to nothing.
    void GoOnFrom(std::uint64_t position) {
        if (position >= nextTold_) {
            Tell(position);
        }
    }

  private:
    void Tell(std::uint64_t position);
    void Work();

    const ReadableFile& file_;
    std::uint64_t nextTold_;  // the thread is told from here on

    std::mutex mutex_;
    std::condition_variable changed_;
    std::uint64_t position_ = 0;
    std::uint64_t begun_ = 0;  // what lies before it was asked for
    bool isClosing_ = false;
    std::thread thread_;
};

}  // namespace clipfix::platform
