#include "platform/prefetch.h"

#include <chrono>
#include <condition_variable>
#include <gtest/gtest.h>
#include <mutex>
#include <thread>
#include <vector>

#include "platform/memory.h"

namespace clipfix::test {
namespace {

using namespace std::chrono_literals;
using platform::Prefetch;

constexpr std::uint64_t kPiece = 1048576;  // a mebibyte, which is what is asked for at once

// Takes note of what it is told to expect.
class ExpectingFile final : public platform::ReadableFile {
  public:
    explicit ExpectingFile(std::uint64_t size) : size_(size) {}

    [[nodiscard]] Result<std::size_t> ReadAt(std::uint64_t, ByteSpan) const override {
        ADD_FAILURE() << "nothing is to be read here";
        return std::size_t{0};
    }
    [[nodiscard]] std::uint64_t Size() const override { return size_; }
    void ExpectReads(std::uint64_t offset, std::uint64_t length) const override {
        const std::lock_guard lock(mutex_);
        EXPECT_EQ(length, kPiece);
        starts_.push_back(offset / kPiece);
        changed_.notify_all();
    }

    // The mebibytes that are expected, once there are so many of them and no more come.
    [[nodiscard]] std::vector<std::uint64_t> WaitFor(std::size_t count) const {
        {
            std::unique_lock lock(mutex_);
            EXPECT_TRUE(changed_.wait_for(lock, 10s, [&] { return starts_.size() >= count; }));
        }
        std::this_thread::sleep_for(30ms);
        const std::lock_guard lock(mutex_);
        return starts_;
    }

  private:
    std::uint64_t size_;
    mutable std::mutex mutex_;
    mutable std::condition_variable changed_;
    mutable std::vector<std::uint64_t> starts_;
};

std::vector<std::uint64_t> From(std::uint64_t first, std::uint64_t end) {
    std::vector<std::uint64_t> numbers;
    for (; first < end; ++first) {
        numbers.push_back(first);
    }
    return numbers;
}

TEST(Prefetch, StaysSoFarAheadOfThePlace) {
    const ExpectingFile file(100 * kPiece);
    Prefetch prefetch(file);
    EXPECT_TRUE(file.WaitFor(0).empty());
    prefetch.GoOnFrom(0);
    EXPECT_EQ(file.WaitFor(32), From(0, 32));
    prefetch.GoOnFrom(kPiece - 1);  // not worth a word
    EXPECT_EQ(file.WaitFor(32), From(0, 32));
    prefetch.GoOnFrom(10 * kPiece);
    EXPECT_EQ(file.WaitFor(42), From(0, 42));
    prefetch.GoOnFrom(3 * kPiece);
    prefetch.GoOnFrom(10 * kPiece);
    EXPECT_EQ(file.WaitFor(42), From(0, 42));
}

TEST(Prefetch, LeavesOutWhatThePlaceHasPassed) {
    const ExpectingFile file(200 * kPiece);
    Prefetch prefetch(file);
    prefetch.GoOnFrom(60 * kPiece);
    EXPECT_EQ(file.WaitFor(32), From(60, 92));
    prefetch.GoOnFrom(150 * kPiece);
    auto expected = From(60, 92);
    for (const std::uint64_t next : From(150, 182)) {
        expected.push_back(next);
    }
    EXPECT_EQ(file.WaitFor(64), expected);
}

TEST(Prefetch, EndsWithTheFile) {
    const ExpectingFile file(40 * kPiece + 1);
    Prefetch prefetch(file);
    prefetch.GoOnFrom(30 * kPiece);
    EXPECT_EQ(file.WaitFor(11), From(30, 41));
    prefetch.GoOnFrom(40 * kPiece);
    EXPECT_EQ(file.WaitFor(11), From(30, 41));
}

// A small file is read in no time; a large one would push everything else out of memory.
TEST(Prefetch, IsForFilesOfAMiddleSize) {
    ASSERT_GT(platform::PhysicalMemory(), 64 * kPiece);
    for (const std::uint64_t size : {16 * kPiece - 1, platform::PhysicalMemory() / 2 + 1}) {
        const ExpectingFile file(size);
        Prefetch prefetch(file);
        prefetch.GoOnFrom(0);
        prefetch.GoOnFrom(10 * kPiece);
        EXPECT_TRUE(file.WaitFor(0).empty());
    }
}

}  // namespace
}  // namespace clipfix::test
