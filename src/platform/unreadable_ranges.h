#pragma once

#include <cstdint>
#include <map>
#include <vector>

namespace clipfix::platform {

// Stretches of a file that the system could not read, in bytes. Stretches that touch or overlap
// are one, so a place that was tried twice counts once.
class UnreadableRanges {
  public:
    struct Range {
        std::uint64_t offset = 0;
        std::uint64_t length = 0;
        friend bool operator==(const Range&, const Range&) = default;
    };

    void Add(std::uint64_t offset, std::uint64_t length);
    [[nodiscard]] bool IsEmpty() const { return endByStart_.empty(); }
    [[nodiscard]] std::uint64_t TotalBytes() const;
    [[nodiscard]] std::vector<Range> List() const;

  private:
    std::map<std::uint64_t, std::uint64_t> endByStart_;
};

}  // namespace clipfix::platform
