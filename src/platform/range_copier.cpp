#include "platform/range_copier.h"

#include <algorithm>
#include <limits>

namespace clipfix::platform {

RangeCopier::RangeCopier(const File* source, WindowReader& reader, File& target,
                         std::uint64_t start)
    : source_(source), reader_(&reader), target_(&target), end_(start), written_(start) {
    bytes_.reserve(kGatheredBytes);
}

Result<void> RangeCopier::CopyRange(std::uint64_t from, std::uint64_t length) {
    while (length > 0) {
        if (rangeLength_ > 0 && from != rangeFrom_ + rangeLength_) {
            if (auto done = FlushRange(); !done) {
                return done;
            }
        }
        if (rangeLength_ == 0) {
            rangeFrom_ = from;
        }
        const std::uint64_t step = std::min(length, kLargestRange - rangeLength_);
        rangeLength_ += step;
        from += step;
        length -= step;
        end_ += step;
        if (rangeLength_ == kLargestRange) {
            if (auto done = FlushRange(); !done) {
                return done;
            }
        }
    }
    return {};
}

Result<void> RangeCopier::Append(ByteView bytes) {
    if (auto done = FlushRange(); !done) {
        return done;
    }
    end_ += bytes.size();
    while (!bytes.empty()) {
        const std::size_t step = std::min(bytes.size(), kGatheredBytes - bytes_.size());
        AppendBytes(bytes_, bytes.first(step));
        bytes = bytes.subspan(step);
        if (bytes_.size() == kGatheredBytes) {
            if (auto done = FlushBytes(); !done) {
                return done;
            }
        }
    }
    return {};
}

Result<void> RangeCopier::Finish() {
    if (auto done = FlushRange(); !done) {
        return done;
    }
    return FlushBytes();
}

Result<void> RangeCopier::FlushBytes() {
    if (bytes_.empty()) {
        return {};
    }
    auto done = target_->WriteAt(written_, bytes_);
    written_ += bytes_.size();
    bytes_.clear();
    return done;
}

Result<void> RangeCopier::FlushRange() {
    std::uint64_t from = rangeFrom_;
    std::uint64_t length = std::exchange(rangeLength_, 0);
    const std::uint64_t inside = from < reader_->Size() ? reader_->Size() - from : 0;
    if (source_ != nullptr && std::min(length, inside) >= kWorthTheSystem) {
        if (auto done = FlushBytes(); !done) {
            return done;
        }
        const auto copied =
            target_->CopyWithinSystem(*source_, from, written_, std::min(length, inside));
        if (!copied) {
            return copied.Failure();
        }
        from += copied.Value();
        length -= copied.Value();
        written_ += copied.Value();
    }
    return CopyThroughMemory(from, length);
}

Result<void> RangeCopier::CopyThroughMemory(std::uint64_t from, std::uint64_t length) {
    while (length > 0) {
        const std::size_t room = kGatheredBytes - bytes_.size();
        const auto step = static_cast<std::size_t>(std::min<std::uint64_t>(length, room));
        const ByteView view = reader_->View(from, step);
        AppendBytes(bytes_, view);
        AppendZeros(bytes_, step - view.size());
        from += step;
        length -= step;
        if (bytes_.size() == kGatheredBytes) {
            if (auto done = FlushBytes(); !done) {
                return done;
            }
        }
    }
    return {};
}

}  // namespace clipfix::platform
