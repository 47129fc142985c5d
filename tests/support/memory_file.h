#pragma once

#include <algorithm>
#include <atomic>
#include <cstdint>
#include <utility>
#include <vector>

#include "platform/file.h"

namespace clipfix::test {

// A file that stands in memory, with sectors that cannot be read, as on a dying disk.
class MemoryFile final : public platform::ReadableFile {
  public:
    explicit MemoryFile(ByteVector bytes) : bytes_(std::move(bytes)) {}

    // From now on every read that touches [offset, offset + length) fails.
    void BreakRange(std::uint64_t offset, std::uint64_t length) {
        broken_.emplace_back(offset, length);
    }

    [[nodiscard]] Result<std::size_t> ReadAt(std::uint64_t offset, ByteSpan out) const override {
        ++reads_;
        const ByteView view =
            offset > bytes_.size() ? ByteView{} : SubView(bytes_, offset, out.size());
        for (const auto& [start, length] : broken_) {
            if (offset < start + length && start < offset + view.size()) {
                return Error{ErrorKind::ReadFailed, "Input/output error", start};
            }
        }
        std::copy(view.begin(), view.end(), out.begin());
        return view.size();
    }
    [[nodiscard]] std::uint64_t Size() const override { return bytes_.size(); }

    // How many reads were asked for so far.
    [[nodiscard]] int Reads() const { return reads_; }

  private:
    ByteVector bytes_;
    std::vector<std::pair<std::uint64_t, std::uint64_t>> broken_;
    mutable std::atomic<int> reads_{0};
};

}  // namespace clipfix::test
