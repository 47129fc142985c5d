#include "platform/prefetch.h"

#include <algorithm>
#include <limits>
#include <system_error>

#include "platform/crash_file.h"
#include "platform/memory.h"

namespace clipfix::platform {

namespace {

constexpr std::uint64_t kWorthAThread = std::uint64_t{16} << 20U;
// How far ahead of the place.
constexpr std::uint64_t kPrefetched = std::uint64_t{32} << 20U;
// What is asked for in one go.
constexpr std::uint64_t kRequest = std::uint64_t{1} << 20U;
constexpr std::uint64_t kNever = std::numeric_limits<std::uint64_t>::max();

}  // namespace

Prefetch::Prefetch(const ReadableFile& file)
    : file_(file),
      nextTold_(file.Size() >= kWorthAThread && file.Size() <= PhysicalMemory() / 2 ? 0 : kNever) {}

Prefetch::~Prefetch() {
    {
        const std::lock_guard lock(mutex_);
        isClosing_ = true;
    }
    changed_.notify_one();
    if (thread_.joinable()) {
        thread_.join();
    }
}

void Prefetch::Tell(std::uint64_t position) {
    {
        const std::lock_guard lock(mutex_);
        position_ = position;
        begun_ = std::max(begun_, position);
    }
    nextTold_ = position + kRequest;
    if (thread_.joinable()) {
        changed_.notify_one();
        return;
    }
    try {
        thread_ = std::thread([this] { Work(); });
    } catch (const std::system_error&) {
        nextTold_ = kNever;
    }
}

void Prefetch::Work() {
    const CrashStack crashStack;
    std::unique_lock lock(mutex_);
    while (true) {
        changed_.wait(lock, [this] { return isClosing_ || begun_ < position_ + kPrefetched; });
        if (isClosing_ || begun_ >= file_.Size()) {
            return;
        }
        const std::uint64_t from = begun_;
        begun_ += kRequest;
        lock.unlock();
        file_.ExpectReads(from, kRequest);
        lock.lock();
    }
}

}  // namespace clipfix::platform
