#pragma once

#include <set>
#include <string>
#include <vector>

#include "atoms/moov_sink.h"

namespace clipfix::test {

// Takes a `moov` in memory, and notes each step. Single pieces can be made to fail.
class MemorySink final : public MoovSink {
  public:
    // From now on the append of this number, counted from 0, fails and takes nothing.
    void FailAppend(int number) { failing_.insert(number); }

    Result<void> Append(ByteView bytes) override {
        const int number = appends_++;
        if (failing_.count(number) != 0) {
            steps_.push_back("failed " + std::to_string(bytes.size()));
            return Error{ErrorKind::NoSpace, "append " + std::to_string(number), bytes_.size()};
        }
        steps_.push_back("append " + std::to_string(bytes.size()));
        AppendBytes(bytes_, bytes);
        return {};
    }
    Result<void> Flush() override {
        steps_.emplace_back("flush");
        return {};
    }

    [[nodiscard]] const ByteVector& Bytes() const { return bytes_; }
    [[nodiscard]] const std::vector<std::string>& Steps() const { return steps_; }

  private:
    ByteVector bytes_;
    std::vector<std::string> steps_;
    std::set<int> failing_;
    int appends_ = 0;
};

}  // namespace clipfix::test
