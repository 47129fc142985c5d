#include "platform/range_copier.h"

#include <algorithm>
#include <utility>

namespace clipfix::platform {

RangeCopier::RangeCopier(const File* source, WindowReader& reader, File& target,
                         std::uint64_t start)
    : reader_(&reader), target_(&target), start_(start), end_(start), written_(start) {
    if (source != nullptr) {
        stretches_.emplace(*source, target, StretchCopier::BestWay(*source, target));
    }
    bytes_.reserve(kGatheredBytes);
}

Result<void> RangeCopier::CopyRange(std::uint64_t from, std::uint64_t length) {
    while (length > 0) {
        if (rangeLength_ > 0 && from != rangeFrom_ + rangeLength_) {
            FlushRange();
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
            FlushRange();
        }
    }
    return TakeOutcome();
}

Result<void> RangeCopier::Append(ByteView bytes) {
    FlushRange();
    end_ += bytes.size();
    while (!bytes.empty()) {
        const std::size_t step = std::min(bytes.size(), kGatheredBytes - bytes_.size());
        AppendBytes(bytes_, bytes.first(step));
        bytes = bytes.subspan(step);
        if (bytes_.size() == kGatheredBytes) {
            FlushBytes();
        }
    }
    return TakeOutcome();
}

Result<void> RangeCopier::Finish() {
    FlushRange();
    FlushBytes();
    return TakeOutcome();
}

void RangeCopier::FlushBytes() {
    if (bytes_.empty()) {
        return;
    }
    Note(target_->WriteAt(written_, bytes_));
    written_ += bytes_.size();
    bytes_.clear();
}

void RangeCopier::FlushRange() {
    std::uint64_t from = rangeFrom_;
    std::uint64_t length = std::exchange(rangeLength_, 0);
    const std::uint64_t inside = from < reader_->Size() ? reader_->Size() - from : 0;
    if (stretches_ && std::min(length, inside) >= kLongStretch) {
        FlushBytes();
        const auto copied = stretches_->Copy(from, written_, std::min(length, inside));
        if (!copied) {
            Note(copied.Failure());
        }
        const std::uint64_t passed = copied ? copied.Value() : length;
        from += passed;
        length -= passed;
        written_ += passed;
    }
    CopyThroughMemory(from, length);
    StoreWhatStands();
}

void RangeCopier::StoreWhatStands() {
    if (!flushAhead_) {
        if (written_ - start_ < kLongFile) {
            return;
        }
        flushAhead_.emplace(*target_, start_);
    }
    flushAhead_->UpTo(written_);
}

void RangeCopier::CopyThroughMemory(std::uint64_t from, std::uint64_t length) {
    while (length > 0) {
        const std::size_t held = bytes_.size();
        const auto step =
            static_cast<std::size_t>(std::min<std::uint64_t>(length, kGatheredBytes - held));
        bytes_.resize(held + step);
        reader_->Read(from, ByteSpan(bytes_).subspan(held));
        from += step;
        length -= step;
        if (bytes_.size() == kGatheredBytes) {
            FlushBytes();
        }
    }
}

void RangeCopier::Note(Result<void> done) {
    if (outcome_ && !done) {
        outcome_ = std::move(done);
    }
}

Result<void> RangeCopier::TakeOutcome() {
    return std::exchange(outcome_, Result<void>());
}

}  // namespace clipfix::platform
