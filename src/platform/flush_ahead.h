#pragma once

#include <condition_variable>
#include <cstdint>
#include <mutex>
#include <thread>

#include "platform/file.h"

namespace clipfix::platform {

// Begins to bring a growing file to its medium while more of it is written, on a thread of its own:
// handing the pages over takes a third of the time of making them. For a file that will be flushed
// anyway; nothing hangs on it.
class FlushAhead {
  public:
    // `file` must outlive the object; what stands in it before `start` is left alone.
    FlushAhead(File& file, std::uint64_t start);
    FlushAhead(const FlushAhead&) = delete;
    FlushAhead& operator=(const FlushAhead&) = delete;
    // Waits for what is being handed over at the moment.
    ~FlushAhead();

    // All before position `end` is written. What is written there once more goes out twice.
    void UpTo(std::uint64_t end);

  private:
    void Work();

    File& file_;
    std::mutex mutex_;
    std::condition_variable changed_;
    std::uint64_t begun_;
    std::uint64_t end_;
    bool isClosing_ = false;
    std::thread thread_;
};

}  // namespace clipfix::platform
