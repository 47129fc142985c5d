#include "platform/unreadable_ranges.h"

#include <algorithm>

namespace clipfix::platform {

void UnreadableRanges::Add(std::uint64_t offset, std::uint64_t length) {
    if (length == 0) {
        return;
    }
    std::uint64_t start = offset;
    std::uint64_t end = offset + length;
    auto next = endByStart_.upper_bound(start);
    if (next != endByStart_.begin() && std::prev(next)->second >= start) {
        --next;
    }
    while (next != endByStart_.end() && next->first <= end) {
        start = std::min(start, next->first);
        end = std::max(end, next->second);
        next = endByStart_.erase(next);
    }
    endByStart_.emplace(start, end);
}

std::uint64_t UnreadableRanges::TotalBytes() const {
    std::uint64_t total = 0;
    for (const auto& [start, end] : endByStart_) {
        total += end - start;
    }
    return total;
}

std::vector<UnreadableRanges::Range> UnreadableRanges::List() const {
    std::vector<Range> ranges;
    ranges.reserve(endByStart_.size());
    for (const auto& [start, end] : endByStart_) {
        ranges.push_back({start, end - start});
    }
    return ranges;
}

}  // namespace clipfix::platform
