#include "platform/flush_ahead.h"

#include <algorithm>
#include <system_error>

#include "platform/crash_file.h"

namespace clipfix::platform {

namespace {

// What is handed over in one go, so that nobody waits long for the end of it on a slow medium.
constexpr std::uint64_t kStep = std::uint64_t{4} << 20U;

}  // namespace

FlushAhead::FlushAhead(File& file, std::uint64_t start) : file_(file), begun_(start), end_(start) {
    try {
        thread_ = std::thread([this] { Work(); });
    } catch (const std::system_error&) {
        // Then all is left to the flush at the end.
    }
}

FlushAhead::~FlushAhead() {
    {
        const std::lock_guard lock(mutex_);
        isClosing_ = true;
    }
    changed_.notify_one();
    if (thread_.joinable()) {
        thread_.join();
    }
}

void FlushAhead::UpTo(std::uint64_t end) {
    {
        const std::lock_guard lock(mutex_);
        end_ = end;
    }
    changed_.notify_one();
}

void FlushAhead::Work() {
    const CrashStack crashStack;
    std::unique_lock lock(mutex_);
    while (true) {
        changed_.wait(lock, [this] { return isClosing_ || end_ > begun_; });
        if (isClosing_) {
            return;
        }
        const std::uint64_t from = begun_;
        const std::uint64_t length = std::min(end_ - begun_, kStep);
        begun_ += length;
        lock.unlock();
        file_.BeginFlush(from, length);
        lock.lock();
    }
}

}  // namespace clipfix::platform
