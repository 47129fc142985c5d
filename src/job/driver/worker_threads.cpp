#include "job/driver/worker_threads.h"

#include <system_error>
#include <utility>

#include "platform/crash_file.h"

namespace clipfix {

bool WorkerThreads::Start(std::function<void()> work) {
    ForgetThoseThatEnded();
    Worker& worker = workers_.emplace_back();
    try {
        worker.thread = std::thread([&worker, work = std::move(work)] {
            const platform::CrashStack crashStack;
            work();
            worker.hasEnded = true;
        });
    } catch (const std::system_error&) {
        workers_.pop_back();
        return false;
    }
    return true;
}

void WorkerThreads::WaitForAll() {
    for (auto& worker : workers_) {
        worker.thread.join();
    }
    workers_.clear();
}

void WorkerThreads::ForgetThoseThatEnded() {
    for (auto worker = workers_.begin(); worker != workers_.end();) {
        if (worker->hasEnded) {
            worker->thread.join();
            worker = workers_.erase(worker);
        } else {
            ++worker;
        }
    }
}

}  // namespace clipfix
