#include "platform/flush_in_steps.h"

#include <gtest/gtest.h>
#include <vector>

#include "support/temp_folder.h"

namespace clipfix::test {
namespace {

using platform::File;
using platform::FlushInSteps;

constexpr std::uint64_t kMiB = 1048576;

File FileOf(const TempFolder& folder, std::uint64_t size) {
    auto file = File::Create((folder / "f").string(), File::Existing::Replace);
    EXPECT_TRUE(file);
    EXPECT_TRUE(file.Value().WriteAt(0, ByteVector(static_cast<std::size_t>(size), 7)));
    return std::move(file).Value();
}

TEST(FlushInSteps, TellsOfEachStretch) {
    const TempFolder folder;
    File file = FileOf(folder, 9 * kMiB + 1);
    std::vector<std::uint64_t> told;
    EXPECT_TRUE(FlushInSteps(file, [&](std::uint64_t done, std::uint64_t total) {
        told.push_back(done);
        EXPECT_EQ(total, 9 * kMiB + 1);
        return true;
    }));
    EXPECT_EQ(told, (std::vector<std::uint64_t>{0, 4 * kMiB, 8 * kMiB, 9 * kMiB + 1}));
}

TEST(FlushInSteps, TellsOnceOfAnEmptyFile) {
    const TempFolder folder;
    File file = FileOf(folder, 0);
    int told = 0;
    EXPECT_TRUE(FlushInSteps(file, [&](std::uint64_t done, std::uint64_t total) {
        EXPECT_EQ(done, 0);
        EXPECT_EQ(total, 0);
        return ++told == 1;
    }));
    EXPECT_EQ(told, 1);
}

TEST(FlushInSteps, IsLeftWhenTheAnswerIsFalse) {
    const TempFolder folder;
    File file = FileOf(folder, 12 * kMiB);
    for (const std::uint64_t last : {std::uint64_t{0}, 8 * kMiB, 12 * kMiB}) {
        const auto flushed =
            FlushInSteps(file, [&](std::uint64_t done, std::uint64_t) { return done < last; });
        ASSERT_FALSE(flushed);
        EXPECT_EQ(flushed.Failure().kind, ErrorKind::Cancelled);
        EXPECT_EQ(flushed.Failure().offset, last);
    }
    EXPECT_TRUE(ReadFile(folder / "f") == ByteVector(12 * kMiB, 7));
}

}  // namespace
}  // namespace clipfix::test
