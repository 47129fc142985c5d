#include "platform/stretch_copier.h"

#include <algorithm>
#include <exception>
#include <utility>

#include "platform/crash_file.h"

namespace clipfix::platform {

namespace {

// Bytes that one of the two threads copies in one go. Both buffers fit into a processor's cache.
constexpr std::uint64_t kBlock = std::uint64_t{512} << 10U;

}  // namespace

StretchCopier::Way StretchCopier::BestWay(const File& source, const File& target) {
    return source.IsCopiedPageByPage() && target.IsCopiedPageByPage() ? Way::ThroughMemory
                                                                      : Way::WithinSystem;
}

StretchCopier::StretchCopier(const File& source, File& target, Way way)
    : source_(source), target_(target), way_(way) {}

StretchCopier::~StretchCopier() {
    {
        const std::lock_guard lock(mutex_);
        isClosing_ = true;
    }
    changed_.notify_all();
    if (partner_.joinable()) {
        partner_.join();
    }
}

Result<std::uint64_t> StretchCopier::Copy(std::uint64_t from, std::uint64_t to,
                                          std::uint64_t length) {
    if (way_ == Way::WithinSystem) {
        return target_.CopyWithinSystem(source_, from, to, length);
    }
    stretch_ = {from, to, length};
    next_ = 0;
    arrived_ = length;
    failure_.reset();
    buffer_.reserve(kBlock);
    if (length > kBlock) {
        CallPartner();
    }
    CopyBlocks(buffer_);
    WaitForPartner();
    if (failure_) {
        return *failure_;
    }
    return arrived_;
}

void StretchCopier::CallPartner() {
    if (!partner_.joinable()) {
        try {
            partnerBuffer_.reserve(kBlock);  // here, where running out of memory can be caught
            partner_ = std::thread([this] { WorkAsPartner(); });
        } catch (const std::exception&) {
            return;  // then one works alone
        }
    }
    {
        const std::lock_guard lock(mutex_);
        partnerIsCalled_ = true;
    }
    changed_.notify_all();
}

void StretchCopier::WaitForPartner() {
    std::unique_lock lock(mutex_);
    changed_.wait(lock, [this] { return !partnerIsCalled_; });
}

void StretchCopier::WorkAsPartner() {
    const CrashStack crashStack;
    std::unique_lock lock(mutex_);
    while (true) {
        changed_.wait(lock, [this] { return partnerIsCalled_ || isClosing_; });
        if (isClosing_) {
            return;
        }
        lock.unlock();
        CopyBlocks(partnerBuffer_);
        lock.lock();
        partnerIsCalled_ = false;
        changed_.notify_all();
    }
}

// Takes one block after the other until none is left. Blocks are handed out in their order, so
// that all that lie before one that was handed out are copied, or are being copied.
void StretchCopier::CopyBlocks(ByteVector& buffer) {
    while (true) {
        const std::uint64_t at = next_.fetch_add(kBlock);
        if (at >= stretch_.length) {
            return;
        }
        buffer.resize(static_cast<std::size_t>(std::min(kBlock, stretch_.length - at)));
        const auto got = source_.ReadAt(stretch_.from + at, buffer);
        if (!got || got.Value() < buffer.size()) {
            EndAt(at, {});
            return;
        }
        if (const auto put = target_.WriteAt(stretch_.to + at, buffer); !put) {
            EndAt(at, put.Failure());
            return;
        }
    }
}

void StretchCopier::EndAt(std::uint64_t position, std::optional<Error> failure) {
    const std::lock_guard lock(mutex_);
    next_ = stretch_.length;
    arrived_ = std::min(arrived_, position);
    if (failure && !failure_) {
        failure_ = std::move(failure);
    }
}

}  // namespace clipfix::platform
