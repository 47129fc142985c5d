#pragma once

#include <chrono>
#include <condition_variable>
#include <mutex>

namespace clipfix::test {

// Lets an engine of a test go round after round, as the test says.
class Pace {
  public:
    // The engine: waits to be let through. False when it is to come to its end.
    [[nodiscard]] bool NextRound() {
        std::unique_lock lock(mutex_);
        ++arrivals_;
        changed_.notify_all();
        changed_.wait(lock, [&] { return allowed_ > 0 || finished_; });
        if (allowed_ == 0) {
            return false;
        }
        --allowed_;
        return true;
    }

    // The test: waits until the engine has come here `times` times; false after half a minute.
    [[nodiscard]] bool WaitForArrivals(int times) {
        std::unique_lock lock(mutex_);
        return changed_.wait_for(lock, std::chrono::seconds(30),
                                 [&] { return arrivals_ >= times; });
    }
    // Whether it comes that often within a moment, for what is expected not to happen.
    [[nodiscard]] bool ArrivesInAMoment(int times) {
        std::unique_lock lock(mutex_);
        return changed_.wait_for(lock, std::chrono::milliseconds(25),
                                 [&] { return arrivals_ >= times; });
    }
    void LetThrough(int rounds) {
        {
            const std::lock_guard lock(mutex_);
            allowed_ += rounds;
        }
        changed_.notify_all();
    }
    void Finish() {
        {
            const std::lock_guard lock(mutex_);
            finished_ = true;
        }
        changed_.notify_all();
    }

  private:
    std::mutex mutex_;
    std::condition_variable changed_;
    int arrivals_ = 0;
    int allowed_ = 0;
    bool finished_ = false;
};

}  // namespace clipfix::test
