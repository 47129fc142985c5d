#include "platform/move_file.h"

#include <filesystem>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>
#include <vector>

#include "support/small_file_system.h"
#include "support/temp_folder.h"

namespace {

std::vector<std::filesystem::path> broughtToTheMedium;

}  // namespace

// Stands before the C library's own, and takes note of the file.
extern "C" int fsync(int descriptor) {
    broughtToTheMedium.push_back(
        std::filesystem::read_symlink("/proc/self/fd/" + std::to_string(descriptor)));
    return static_cast<int>(::syscall(SYS_fsync, descriptor));
}

namespace clipfix::platform {
namespace {

using std::filesystem::exists;
using test::ReadFile;
using test::SmallFileSystem;
using test::TempFolder;
using test::WriteFile;

constexpr std::uint64_t kMiB = 1048576;

ByteVector Pattern(std::uint64_t count) {
    ByteVector bytes(static_cast<std::size_t>(count));
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        bytes[i] = static_cast<std::uint8_t>(i * 7 + (i >> 12U));
    }
    return bytes;
}

// Notes what the routine is told, and stops at a number of bytes.
class Progress {
  public:
    explicit Progress(std::uint64_t stopAt = UINT64_MAX) : stopAt_(stopAt) {}
    TransferProgress Routine() {
        return [this](std::uint64_t transferred, std::uint64_t total) {
            told.push_back(transferred);
            totals.push_back(total);
            return transferred < stopAt_;
        };
    }
    std::vector<std::uint64_t> told;
    std::vector<std::uint64_t> totals;

  private:
    std::uint64_t stopAt_;
};

ino_t InodeOf(const std::filesystem::path& path) {
    struct stat facts {};
    EXPECT_EQ(::stat(path.c_str(), &facts), 0);
    return facts.st_ino;
}

TEST(MoveFile, RenamesOnOneFileSystemAndTellsOnce) {
    TempFolder folder;
    WriteFile(folder / "a", Pattern(100));
    const auto inode = InodeOf(folder / "a");
    Progress progress;
    EXPECT_TRUE(MoveFileWithProgress(folder / "a", folder / "b", progress.Routine()));
    EXPECT_EQ(progress.told, std::vector<std::uint64_t>{1});
    EXPECT_EQ(progress.totals, std::vector<std::uint64_t>{1});
    EXPECT_EQ(InodeOf(folder / "b"), inode) << "renamed and not copied";
    EXPECT_FALSE(exists(folder / "a"));
}

// Whoever is told that the move is done may pull the plug.
TEST(MoveFile, BringsTheFileToTheMediumBeforeItTells) {
    TempFolder folder;
    WriteFile(folder / "a", Pattern(100));
    broughtToTheMedium.clear();
    const auto brought = std::vector{std::filesystem::canonical(folder.Path()) / "b"};
    EXPECT_TRUE(MoveFileWithProgress(folder / "a", folder / "b", [&](auto, auto) {
        EXPECT_EQ(broughtToTheMedium, brought);
        return true;
    }));
    EXPECT_EQ(broughtToTheMedium, brought);
}

TEST(MoveFile, CannotBeStoppedOnceItWasRenamed) {
    TempFolder folder;
    WriteFile(folder / "a", Pattern(100));
    Progress progress(0);
    EXPECT_TRUE(MoveFileWithProgress(folder / "a", folder / "b", progress.Routine()));
    EXPECT_EQ(ReadFile(folder / "b"), Pattern(100));
}

TEST(MoveFile, NeverReplacesAFile) {
    TempFolder folder;
    WriteFile(folder / "a", Pattern(100));
    WriteFile(folder / "b", Pattern(3));
    Progress progress;
    const auto moved = MoveFileWithProgress(folder / "a", folder / "b", progress.Routine());
    ASSERT_FALSE(moved);
    EXPECT_EQ(moved.Failure().kind, ErrorKind::AlreadyExists);
    EXPECT_EQ(ReadFile(folder / "a"), Pattern(100));
    EXPECT_EQ(ReadFile(folder / "b"), Pattern(3));
    EXPECT_TRUE(progress.told.empty());
}

TEST(MoveFile, NeedsAFolderThatExists) {
    TempFolder folder;
    WriteFile(folder / "a", Pattern(100));
    Progress progress;
    const auto moved = MoveFileWithProgress(folder / "a", folder / "no/b", progress.Routine());
    ASSERT_FALSE(moved);
    EXPECT_EQ(moved.Failure().kind, ErrorKind::NotFound);
    EXPECT_TRUE(exists(folder / "a"));
}

TEST(MoveFile, NeedsASource) {
    TempFolder folder;
    Progress progress;
    EXPECT_FALSE(MoveFileWithProgress(folder / "a", folder / "b", progress.Routine()));
    EXPECT_FALSE(exists(folder / "b"));
}

class MoveToAnotherFileSystem : public ::testing::Test {
  protected:
    void SetUp() override {
        if (!disk.IsMounted()) {
            GTEST_SKIP() << "only root can mount the small file system of this test";
        }
    }
    TempFolder folder;
    SmallFileSystem disk{8 * kMiB};
};

TEST_F(MoveToAnotherFileSystem, CopiesPieceByPieceAndDeletesTheSource) {
    const ByteVector bytes = Pattern(3 * kMiB + 5);
    WriteFile(folder / "a", bytes);
    Progress progress;
    EXPECT_TRUE(MoveFileWithProgress(folder / "a", disk / "b", progress.Routine()));
    EXPECT_EQ(progress.told,
              (std::vector<std::uint64_t>{0, kMiB, 2 * kMiB, 3 * kMiB, 3 * kMiB + 5}));
    EXPECT_EQ(progress.totals, std::vector<std::uint64_t>(5, 3 * kMiB + 5));
    EXPECT_TRUE(ReadFile(disk / "b") == bytes);
    EXPECT_FALSE(exists(folder / "a"));
}

TEST_F(MoveToAnotherFileSystem, KeepsTheSourceUntilTheCopyIsOnTheMedium) {
    WriteFile(folder / "a", Pattern(100));
    broughtToTheMedium.clear();
    EXPECT_TRUE(MoveFileWithProgress(folder / "a", disk / "b", [&](auto, auto) {
        EXPECT_TRUE(exists(folder / "a"));
        EXPECT_TRUE(broughtToTheMedium.empty());
        return true;
    }));
    EXPECT_EQ(broughtToTheMedium, std::vector{std::filesystem::canonical(disk / "b")});
}

TEST_F(MoveToAnotherFileSystem, MovesAnEmptyFile) {
    WriteFile(folder / "a", {});
    Progress progress;
    EXPECT_TRUE(MoveFileWithProgress(folder / "a", disk / "b", progress.Routine()));
    EXPECT_EQ(progress.told, std::vector<std::uint64_t>{0});
    EXPECT_EQ(ReadFile(disk / "b"), ByteVector{});
    EXPECT_FALSE(exists(folder / "a"));
}

// Between two file systems of one kind the kernel itself may copy.
TEST_F(MoveToAnotherFileSystem, CopiesInsideTheSystemWhereThatIsOffered) {
    SmallFileSystem other(8 * kMiB);
    ASSERT_TRUE(other.IsMounted());
    const ByteVector bytes = Pattern(2 * kMiB + 77);
    WriteFile(disk / "a", bytes);
    Progress progress;
    EXPECT_TRUE(MoveFileWithProgress(disk / "a", other / "b", progress.Routine()));
    EXPECT_EQ(progress.told.back(), 2 * kMiB + 77);
    EXPECT_TRUE(ReadFile(other / "b") == bytes);
    EXPECT_FALSE(exists(disk / "a"));
}

class StoppedMove : public MoveToAnotherFileSystem,
                    public ::testing::WithParamInterface<std::uint64_t> {};

TEST_P(StoppedMove, LeavesTheSourceAndNoDestination) {
    SmallFileSystem roomy(110 * kMiB);
    ASSERT_TRUE(roomy.IsMounted());
    WriteFile(folder / "a", {});
    std::filesystem::resize_file(folder / "a", 100 * kMiB);
    Progress progress(GetParam() * kMiB);
    const auto moved = MoveFileWithProgress(folder / "a", roomy / "b", progress.Routine());
    ASSERT_FALSE(moved);
    EXPECT_EQ(moved.Failure().kind, ErrorKind::Cancelled);
    EXPECT_EQ(moved.Failure().offset, GetParam() * kMiB);
    EXPECT_FALSE(exists(roomy / "b"));
    EXPECT_EQ(std::filesystem::file_size(folder / "a"), 100 * kMiB);
}

INSTANTIATE_TEST_SUITE_P(AtPercent, StoppedMove, ::testing::Values(0, 1, 50, 99, 100));

TEST_F(MoveToAnotherFileSystem, LeavesNothingOnADiskThatFillsUp) {
    const ByteVector bytes = Pattern(10 * kMiB);
    WriteFile(folder / "a", bytes);
    Progress progress;
    const auto moved = MoveFileWithProgress(folder / "a", disk / "b", progress.Routine());
    ASSERT_FALSE(moved);
    EXPECT_EQ(moved.Failure().kind, ErrorKind::NoSpace);
    EXPECT_GT(progress.told.back(), 6 * kMiB) << "in the middle of the copy";
    EXPECT_FALSE(exists(disk / "b"));
    EXPECT_TRUE(ReadFile(folder / "a") == bytes);
}

TEST_F(MoveToAnotherFileSystem, NeverReplacesAFile) {
    WriteFile(folder / "a", Pattern(100));
    WriteFile(disk / "b", Pattern(3));
    Progress progress;
    const auto moved = MoveFileWithProgress(folder / "a", disk / "b", progress.Routine());
    ASSERT_FALSE(moved);
    EXPECT_EQ(moved.Failure().kind, ErrorKind::AlreadyExists);
    EXPECT_EQ(ReadFile(disk / "b"), Pattern(3));
    EXPECT_EQ(ReadFile(folder / "a"), Pattern(100));
}

TEST_F(MoveToAnotherFileSystem, NeedsAFolderThatExists) {
    WriteFile(folder / "a", Pattern(100));
    Progress progress;
    EXPECT_FALSE(MoveFileWithProgress(folder / "a", disk / "no/b", progress.Routine()));
    EXPECT_TRUE(exists(folder / "a"));
}

TEST(ReplaceByRename, TakesThePlaceOfWhatStandsThere) {
    TempFolder folder;
    WriteFile(folder / "a", Pattern(100));
    WriteFile(folder / "b", Pattern(3));
    EXPECT_TRUE(ReplaceByRename(folder / "a", folder / "b"));
    EXPECT_EQ(ReadFile(folder / "b"), Pattern(100));
    EXPECT_FALSE(exists(folder / "a"));
}

TEST(ReplaceByRename, FailsWithoutASource) {
    TempFolder folder;
    WriteFile(folder / "b", Pattern(3));
    EXPECT_FALSE(ReplaceByRename(folder / "a", folder / "b"));
    EXPECT_EQ(ReadFile(folder / "b"), Pattern(3));
}

}  // namespace
}  // namespace clipfix::platform
