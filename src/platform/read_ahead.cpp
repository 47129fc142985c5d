#include "platform/read_ahead.h"

#include <system_error>
#include <utility>

#include "platform/crash_file.h"

namespace clipfix::platform {

ReadAhead::ReadAhead(const ReadableFile& file) : file_(file) {
    try {
        thread_ = std::thread([this] { Work(); });
    } catch (const std::system_error&) {
        // Then nothing is ever begun.
    }
}

ReadAhead::~ReadAhead() {
    {
        const std::lock_guard lock(mutex_);
        isClosing_ = true;
    }
    changed_.notify_all();
    if (thread_.joinable()) {
        thread_.join();
    }
}

void ReadAhead::Begin(std::uint64_t offset, std::size_t length) {
    if (!thread_.joinable()) {
        return;
    }
    {
        const std::lock_guard lock(mutex_);
        piece_ = {offset, length, false};
        bytes_.resize(length);
        isReading_ = true;
    }
    changed_.notify_all();
}

ReadAhead::Piece ReadAhead::Take(ByteVector& bytes) {
    std::unique_lock lock(mutex_);
    changed_.wait(lock, [this] { return !isReading_; });
    if (piece_.length > 0) {
        std::swap(bytes, bytes_);
    }
    return std::exchange(piece_, {});
}

void ReadAhead::Work() {
    const CrashStack crashStack;
    std::unique_lock lock(mutex_);
    while (true) {
        changed_.wait(lock, [this] { return isReading_ || isClosing_; });
        if (isClosing_) {
            return;
        }
        lock.unlock();
        const auto got = file_.ReadAt(piece_.start, bytes_);
        lock.lock();
        piece_.isWhole = got && got.Value() == piece_.length;
        isReading_ = false;
        changed_.notify_all();
    }
}

}  // namespace clipfix::platform
