#pragma once

#include <atomic>
#include <functional>
#include <list>
#include <thread>

namespace clipfix {

// The worker threads of one kind. One does the work; an earlier one that is still on its last
// steps goes on beside it, so that nobody has to wait for it in order to start the next. All
// operations belong to the thread that owns the object.
class WorkerThreads {
  public:
    WorkerThreads() = default;
    WorkerThreads(const WorkerThreads&) = delete;
    WorkerThreads& operator=(const WorkerThreads&) = delete;
    ~WorkerThreads() { WaitForAll(); }

    // Runs `work` on a thread of its own. False when the system gives no thread; nothing runs then.
    [[nodiscard]] bool Start(std::function<void()> work);

    // Waits until each has left its work.
    void WaitForAll();

  private:
    struct Worker {
        std::atomic<bool> hasEnded{false};
        std::thread thread;
    };
    void ForgetThoseThatEnded();

    std::list<Worker> workers_;
};

}  // namespace clipfix
