#include "repairmov/probe_pool.h"

#include <new>
#include <system_error>
#include <utility>

#include "platform/crash_file.h"
#include "platform/window_reader.h"

namespace clipfix {

ProbePool::ProbePool(const AacProbe& probe, const platform::ReadableFile& file, unsigned threads,
                     std::function<bool()> goOn)
    : probe_(probe), file_(file), goOn_(std::move(goOn)) {
    if (threads <= 1) {
        return;
    }
    try {
        for (unsigned i = 0; i < threads; ++i) {
            threads_.emplace_back([this] { Work(); });
        }
    } catch (const std::system_error&) {
        // Those that could be started do the work; without any, the caller does it.
    }
}

ProbePool::~ProbePool() {
    {
        const std::lock_guard lock(mutex_);
        isClosing_ = true;
        waiting_.clear();
    }
    toDo_.notify_all();
    for (std::thread& thread : threads_) {
        thread.join();
    }
}

void ProbePool::Submit(std::uint64_t offset, std::uint64_t length) {
    tasks_.push_back(std::make_unique<Task>());
    Task& task = *tasks_.back();
    task.offset = offset;
    task.length = length;
    if (threads_.empty()) {
        return;
    }
    try {
        const std::lock_guard lock(mutex_);
        waiting_.push_back(&task);
    } catch (const std::bad_alloc&) {
        tasks_.pop_back();  // nobody would ever finish it
        throw;
    }
    toDo_.notify_one();
}

bool ProbePool::IsNextReady() {
    if (tasks_.empty()) {
        return false;
    }
    if (threads_.empty()) {
        return true;
    }
    const std::lock_guard lock(mutex_);
    return tasks_.front()->isDone;
}

std::vector<CSample> ProbePool::TakeNext() {
    const std::unique_ptr<Task> task = std::move(tasks_.front());
    tasks_.pop_front();
    if (threads_.empty()) {
        Probe(*task);
    } else {
        std::unique_lock lock(mutex_);
        done_.wait(lock, [&task] { return task->isDone; });
    }
    for (const auto& range : task->unreadable) {
        unreadable_.Add(range.offset, range.length);
    }
    return std::move(task->frames);
}

void ProbePool::Work() {
    const platform::CrashStack crashStack;
    std::unique_lock lock(mutex_);
    while (true) {
        toDo_.wait(lock, [this] { return isClosing_ || !waiting_.empty(); });
        if (isClosing_) {
            return;
        }
        Task* task = waiting_.front();
        waiting_.pop_front();
        lock.unlock();
        Probe(*task);
        lock.lock();
        task->isDone = true;
        done_.notify_all();
    }
}

void ProbePool::Probe(Task& task) const {
    // The one place where a probe's want of memory is swallowed: its range then holds no frame.
    try {
        platform::WindowReader reader(file_);
        task.frames = probe_.ProbeAacFrames(reader, task.offset, task.length, goOn_);
        task.frames.shrink_to_fit();
        task.unreadable = reader.Unreadable().List();
    } catch (const std::bad_alloc&) {
        task.frames.clear();
    }
}

}  // namespace clipfix
