#pragma once

#include <condition_variable>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

namespace clipfix::test {

using Lines = std::vector<std::string>;

// Lines put one behind the other.
[[nodiscard]] Lines Join(std::initializer_list<Lines> parts);

// What happened in a job, line by line, in the order in which it happened. Any thread may write.
// The thread that makes the log counts as the interface thread, all others as workers.
class JobLog {
  public:
    void Add(std::string line);

    [[nodiscard]] Lines All() const;
    [[nodiscard]] Lines OfInterface() const { return Of(true); }
    [[nodiscard]] Lines OfWorkers() const { return Of(false); }
    void Clear();

    // Waits until the line stands in the log `times` times. False after half a minute.
    [[nodiscard]] bool WaitFor(const std::string& line, int times = 1) const;
    [[nodiscard]] bool Has(const std::string& line) const;

  private:
    struct Entry {
        std::string line;
        bool isOfInterface;
    };
    [[nodiscard]] Lines Of(bool interface) const;
    [[nodiscard]] int Count(const std::string& line) const;

    std::thread::id interface_ = std::this_thread::get_id();
    mutable std::mutex mutex_;
    mutable std::condition_variable grown_;
    std::vector<Entry> entries_;
};

}  // namespace clipfix::test
