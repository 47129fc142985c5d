#pragma once

#include <condition_variable>
#include <cstdint>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

#include "platform/file.h"
#include "platform/unreadable_ranges.h"
#include "repairmov/aac_probe.h"

namespace clipfix {

// Looks for AAC frames in many ranges of a file side by side, and gives the answers in the order
// of the questions, whichever was ready first. A range is probed by a decoder of its own, so the
// answers do not depend on the number of threads. Used by one thread.
class ProbePool {
  public:
    // `threads` of 1 or 0 makes no thread: a range is then probed when its answer is taken.
    // `goOn` is asked on every thread; once it answers false, answers are cut short. What is
    // handed over must outlive the pool.
    ProbePool(const AacProbe& probe, const platform::ReadableFile& file, unsigned threads,
              std::function<bool()> goOn);
    ProbePool(const ProbePool&) = delete;
    ProbePool& operator=(const ProbePool&) = delete;
    // Ranges that nobody has begun with are dropped; waits for the others.
    ~ProbePool();

    // Asks for the range of `length` bytes at `offset`. The caller bounds how many are asked for.
    void Submit(std::uint64_t offset, std::uint64_t length);
    // Ranges whose answers were not taken yet.
    [[nodiscard]] std::size_t Outstanding() const { return tasks_.size(); }
    // Whether TakeNext would not have to wait.
    [[nodiscard]] bool IsNextReady();
    // The answer for the oldest range, waiting for it. Only while Outstanding() is above 0.
    [[nodiscard]] std::vector<CSample> TakeNext();

    // What could not be read, of all ranges whose answers were taken.
    [[nodiscard]] const platform::UnreadableRanges& Unreadable() const { return unreadable_; }

  private:
    struct Task {
        std::uint64_t offset = 0;
        std::uint64_t length = 0;
        bool isDone = false;
        std::vector<CSample> frames;
        std::vector<platform::UnreadableRanges::Range> unreadable;
    };

    void Work();
    void Probe(Task& task) const;

    const AacProbe& probe_;
    const platform::ReadableFile& file_;
    std::function<bool()> goOn_;
    platform::UnreadableRanges unreadable_;

    // In the order of asking. Touched by the owner's thread alone; the tasks themselves are handed
    // to the workers and back under the mutex.
    std::deque<std::unique_ptr<Task>> tasks_;

    std::mutex mutex_;
    std::condition_variable toDo_;
    std::condition_variable done_;
    std::deque<Task*> waiting_;
    bool isClosing_ = false;
    std::vector<std::thread> threads_;
};

}  // namespace clipfix
