#pragma once

#include <cstdint>
#include <string>
#include <utility>

namespace clipfix::test {

// Reads codes from a text of the letters 0 and 1, in the plainest way.
class BitText {
  public:
    explicit BitText(std::string bits) : bits_(std::move(bits)) {}

    std::int64_t Flag() { return bits_.at(at_++) - '0'; }
    std::int64_t U(std::int64_t count) {
        std::int64_t value = 0;
        for (std::int64_t i = 0; i < count; ++i) {
            value = 2 * value + Flag();
        }
        return value;
    }
    std::int64_t Ue() {
        std::int64_t zeros = 0;
        while (Flag() == 0) {
            ++zeros;
        }
        return (std::int64_t{1} << zeros) - 1 + U(zeros);
    }
    [[nodiscard]] std::size_t Left() const { return bits_.size() - at_; }

  private:
    std::string bits_;
    std::size_t at_ = 0;
};

}  // namespace clipfix::test
