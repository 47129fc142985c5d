#include "platform/stretch_copier.h"

#include <algorithm>
#include <filesystem>
#include <gtest/gtest.h>
#include <optional>
#include <string>
#include <utility>

#include "support/random.h"
#include "support/small_file_system.h"
#include "support/temp_folder.h"

namespace clipfix::test {
namespace {

using platform::File;
using platform::StretchCopier;
using Way = StretchCopier::Way;

constexpr std::uint64_t kKiB = 1024;

// The same whichever way is taken.
class StretchCopierOfBothWays : public ::testing::TestWithParam<Way> {
  protected:
    // The source that is copied from, with its bytes, and a target in the same folder.
    struct Files {
        Files(const std::filesystem::path& folder, std::size_t size)
            : bytes(Random(11).Bytes(size)), targetPath(folder / "target") {
            WriteFile(folder / "source", bytes);
            auto opened = File::OpenForReading(folder / "source");
            auto made = File::Create(targetPath, File::Existing::Replace);
            EXPECT_TRUE(opened);
            EXPECT_TRUE(made);
            source.emplace(std::move(opened).Value());
            target.emplace(std::move(made).Value());
        }
        ByteVector bytes;
        std::filesystem::path targetPath;
        std::optional<File> source;
        std::optional<File> target;
    };
    TempFolder folder;
};

TEST_P(StretchCopierOfBothWays, CopiesStretchesOfEveryLength) {
    Files files(folder.Path(), 3000 * kKiB);
    StretchCopier copier(*files.source, *files.target, GetParam());
    ByteVector expected;
    std::uint64_t from = 5;
    for (const std::uint64_t length : {std::uint64_t{0}, std::uint64_t{1}, 512 * kKiB - 1,
                                       512 * kKiB, 512 * kKiB + 1, 1200 * kKiB, 200 * kKiB}) {
        const auto copied = copier.Copy(from, expected.size(), length);
        ASSERT_TRUE(copied);
        EXPECT_EQ(copied.Value(), length);
        AppendBytes(expected, SubView(files.bytes, from, length));
        from += length;
    }
    EXPECT_TRUE(ReadFile(files.targetPath) == expected);
}

// Wherever the two threads happen to be: a great many stretches of a few blocks each.
TEST_P(StretchCopierOfBothWays, CopiesAllOfManyStretches) {
    Files files(folder.Path(), 2500 * kKiB);
    StretchCopier copier(*files.source, *files.target, GetParam());
    Random random(3);
    for (int i = 0; i < 6; ++i) {
        const std::uint64_t from = random.Below(500 * kKiB);
        const std::uint64_t length = 600 * kKiB + random.Below(1400 * kKiB);
        const std::uint64_t to = random.Below(10000);
        ASSERT_TRUE(files.target->SetEnd(0));
        const auto copied = copier.Copy(from, to, length);
        ASSERT_TRUE(copied);
        ASSERT_EQ(copied.Value(), length);
        ByteVector expected(to);
        AppendBytes(expected, SubView(files.bytes, from, length));
        ASSERT_TRUE(ReadFile(files.targetPath) == expected);
    }
}

// A file that became shorter after it was opened reads like one whose last sectors are gone.
TEST_P(StretchCopierOfBothWays, TellsHowFarItCameInASourceThatEnds) {
    Files files(folder.Path(), 3000 * kKiB);
    StretchCopier copier(*files.source, *files.target, GetParam());
    std::filesystem::resize_file(folder / "source", 1100 * kKiB);
    for (const std::uint64_t from : {std::uint64_t{0}, 700 * kKiB, 1100 * kKiB, 2000 * kKiB}) {
        ASSERT_TRUE(files.target->SetEnd(0));
        const auto copied = copier.Copy(from, 0, 900 * kKiB);
        ASSERT_TRUE(copied);
        const std::uint64_t inside = std::max(from, 1100 * kKiB) - from;
        EXPECT_LE(copied.Value(), inside);
        EXPECT_GE(copied.Value(), std::min(inside, 900 * kKiB) / (512 * kKiB) * (512 * kKiB));
        ByteVector made = ReadFile(files.targetPath);
        ASSERT_GE(made.size(), copied.Value());
        made.resize(copied.Value());
        const ByteView expected = SubView(files.bytes, from, copied.Value());
        EXPECT_TRUE(std::equal(made.begin(), made.end(), expected.begin(), expected.end()));
    }
}

TEST_P(StretchCopierOfBothWays, FailsOnADiskThatFillsUp) {
    const SmallFileSystem disk(4000 * kKiB);
    if (!disk.IsMounted()) {
        GTEST_SKIP() << "a file system can only be mounted by root";
    }
    Files files(disk.Path(), 3000 * kKiB);
    StretchCopier copier(*files.source, *files.target, GetParam());
    const auto copied = copier.Copy(0, 0, 3000 * kKiB);
    ASSERT_FALSE(copied);
    EXPECT_EQ(copied.Failure().kind, ErrorKind::NoSpace);
    // What it has to do next is not held up by that.
    ASSERT_TRUE(files.target->SetEnd(0));
    const auto again = copier.Copy(100, 0, 600 * kKiB);
    ASSERT_TRUE(again);
    EXPECT_EQ(again.Value(), 600 * kKiB);
}

INSTANTIATE_TEST_SUITE_P(Ways, StretchCopierOfBothWays,
                         ::testing::Values(Way::WithinSystem, Way::ThroughMemory),
                         [](const auto& way) {
                             return std::string(way.param == Way::WithinSystem ? "WithinSystem"
                                                                               : "ThroughMemory");
                         });

TEST(StretchCopier, LeavesItToTheSystemWhereThatMayKnowABetterWay) {
    const SmallFileSystem disk(100 * kKiB);
    if (!disk.IsMounted()) {
        GTEST_SKIP() << "a file system can only be mounted by root";
    }
    WriteFile(disk / "in memory", {});
    const auto inMemory = File::OpenForReading(disk / "in memory");
    const auto byTheKernel = File::OpenForReading("/proc/self/status");
    ASSERT_TRUE(inMemory);
    ASSERT_TRUE(byTheKernel);
    EXPECT_EQ(StretchCopier::BestWay(inMemory.Value(), inMemory.Value()), Way::ThroughMemory);
    EXPECT_EQ(StretchCopier::BestWay(byTheKernel.Value(), inMemory.Value()), Way::WithinSystem);
    EXPECT_EQ(StretchCopier::BestWay(inMemory.Value(), byTheKernel.Value()), Way::WithinSystem);
}

}  // namespace
}  // namespace clipfix::test
