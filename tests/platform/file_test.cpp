#include "platform/file.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include "platform/folders.h"
#include "platform/range_copier.h"
#include "support/memory_file.h"
#include "support/temp_folder.h"

namespace clipfix::platform {
namespace {

using test::ReadFile;
using test::TempFolder;
using test::WriteFile;

ErrorKind KindOfOpening(const std::filesystem::path& path) {
    const auto file = File::OpenForReading(path);
    return file ? ErrorKind::Cancelled : file.Failure().kind;
}

TEST(File, OpensPlainFilesOnly) {
    const TempFolder folder;
    WriteFile(folder / "plain", ByteVector{1, 2, 3});
    ASSERT_EQ(::mkfifo((folder / "pipe").c_str(), 0600), 0);
    EXPECT_TRUE(File::OpenForReading(folder / "plain"));
    EXPECT_EQ(KindOfOpening(folder / "pipe"), ErrorKind::NotAFile);
    EXPECT_EQ(KindOfOpening(folder.Path()), ErrorKind::NotAFile);
    EXPECT_EQ(KindOfOpening("/dev/null"), ErrorKind::NotAFile);
    EXPECT_EQ(KindOfOpening(folder / "missing"), ErrorKind::NotFound);
}

TEST(File, ReadsFewerBytesOnlyAtTheEnd) {
    const TempFolder folder;
    WriteFile(folder / "f", ByteVector{1, 2, 3, 4, 5});
    const auto file = File::OpenForReading(folder / "f");
    ASSERT_TRUE(file);
    ByteVector out(4);
    EXPECT_EQ(file.Value().ReadAt(1, out).Value(), 4U);
    EXPECT_EQ(out, (ByteVector{2, 3, 4, 5}));
    EXPECT_EQ(file.Value().ReadAt(3, out).Value(), 2U);
    EXPECT_EQ(file.Value().ReadAt(5, out).Value(), 0U);
    EXPECT_EQ(file.Value().ReadAt(UINT64_MAX, out).Value(), 0U);
}

TEST(File, RefusesToReplaceWhereItIsToldTo) {
    const TempFolder folder;
    WriteFile(folder / "f", ByteVector{1});
    const auto refused = File::Create(folder / "f", File::Existing::Refuse);
    ASSERT_FALSE(refused);
    EXPECT_EQ(refused.Failure().kind, ErrorKind::AlreadyExists);
    EXPECT_EQ(ReadFile(folder / "f"), ByteVector{1});
    EXPECT_TRUE(File::Create(folder / "f", File::Existing::Replace));
    EXPECT_TRUE(ReadFile(folder / "f").empty());
}

TEST(File, WritesAnywhereAndSetsItsEnd) {
    const TempFolder folder;
    auto file = File::Create(folder / "f", File::Existing::Refuse);
    ASSERT_TRUE(file);
    EXPECT_TRUE(file.Value().WriteAt(3, ByteVector{9, 8, 7}));
    EXPECT_TRUE(file.Value().SetEnd(5));
    EXPECT_EQ(file.Value().CurrentSize().Value(), 5U);
    EXPECT_EQ(ReadFile(folder / "f"), (ByteVector{0, 0, 0, 9, 8}));
    EXPECT_FALSE(file.Value().WriteAt(UINT64_MAX, ByteVector{1}));
}

TEST(File, TellsAFullDiskFromOtherFailures) {
    auto full = File::Create("/dev/full", File::Existing::Replace);
    ASSERT_TRUE(full);
    const auto written = full.Value().WriteAt(0, ByteVector{1});
    ASSERT_FALSE(written);
    EXPECT_EQ(written.Failure().kind, ErrorKind::NoSpace);
}

TEST(File, KnowsItselfUnderAnotherName) {
    const TempFolder folder;
    WriteFile(folder / "a", ByteVector{1});
    WriteFile(folder / "b", ByteVector{1});
    std::filesystem::create_hard_link(folder / "a", folder / "c");
    const auto a = File::OpenForReading(folder / "a");
    EXPECT_TRUE(a.Value().IsSameFileAs(File::OpenForReading(folder / "c").Value()));
    EXPECT_FALSE(a.Value().IsSameFileAs(File::OpenForReading(folder / "b").Value()));
}

TEST(ScratchFolder, GoesWithItsOwner) {
    const TempFolder folder;
    std::filesystem::path path;
    {
        const auto scratch = ScratchFolder::Make(folder.Path());
        ASSERT_TRUE(scratch);
        path = scratch.Value().Path();
        WriteFile(path / "work", ByteVector{1});
        EXPECT_EQ(path.parent_path(), folder.Path());
    }
    EXPECT_FALSE(std::filesystem::exists(path));
}

TEST(ScratchFolder, RemovesWhatAKilledProcessLeftAndNothingElse) {
    const TempFolder folder;
    std::filesystem::create_directory(folder / ".clipfix-abcdef");
    WriteFile(folder / ".clipfix-abcdef/Repaired.avi", ByteVector{1});
    WriteFile(folder / ".clipfix-file", ByteVector{1});
    std::filesystem::create_directory(folder / "other");
    const auto first = ScratchFolder::Make(folder.Path());
    const auto second = ScratchFolder::Make(folder.Path());
    ASSERT_TRUE(first && second);
    EXPECT_FALSE(std::filesystem::exists(folder / ".clipfix-abcdef"));
    EXPECT_TRUE(std::filesystem::exists(folder / ".clipfix-file"));
    EXPECT_TRUE(std::filesystem::exists(folder / "other"));
    EXPECT_TRUE(std::filesystem::exists(first.Value().Path())) << "in use, so it stays";
}

TEST(ScratchFolder, SaysSoWhereNoFolderCanBeMade) {
    const auto scratch = ScratchFolder::Make("/proc/no-such-folder");
    ASSERT_FALSE(scratch);
    EXPECT_EQ(scratch.Failure().kind, ErrorKind::NotFound);
}

TEST(Folders, GivesTheFreeBytesOfTheNearestFolder) {
    const TempFolder folder;
    const auto here = FreeBytes(folder.Path());
    const auto below = FreeBytes(folder / "not/there/yet");
    ASSERT_TRUE(here && below);
    EXPECT_GT(*here, 0U);
    EXPECT_GT(*below, 0U);
}

TEST(Folders, TellsANewFolderFromOneThatStood) {
    const TempFolder folder;
    EXPECT_TRUE(MakeFolder(folder / "new").Value());
    EXPECT_FALSE(MakeFolder(folder / "new").Value());
    WriteFile(folder / "file", ByteVector{1});
    EXPECT_FALSE(MakeFolder(folder / "file"));
}

ByteVector Noise(std::size_t size) {
    ByteVector bytes(size);
    std::uint32_t state = 12345;
    for (auto& byte : bytes) {
        state = state * 1664525U + 1013904223U;
        byte = static_cast<std::uint8_t>(state >> 24U);
    }
    return bytes;
}

TEST(RangeCopier, PutsRangesAndBytesInTheirOrder) {
    const TempFolder folder;
    const ByteVector bytes = Noise(40'000'000);
    WriteFile(folder / "source", bytes);
    const auto source = File::OpenForReading(folder / "source");
    auto target = File::Create(folder / "target", File::Existing::Refuse);
    ASSERT_TRUE(source && target);
    WindowReader reader(source.Value());
    RangeCopier copier(&source.Value(), reader, target.Value(), 0);

    ByteVector expected;
    const auto copy = [&](std::uint64_t from, std::uint64_t length) {
        ASSERT_TRUE(copier.CopyRange(from, length));
        const ByteView part = SubView(bytes, from, length);
        AppendBytes(expected, part);
        AppendZeros(expected, length - part.size());
    };
    ASSERT_TRUE(copier.Append(ByteVector{1, 2, 3}));
    AppendBytes(expected, ByteVector{1, 2, 3});
    copy(10, 100);
    copy(110, 20'000'000);
    copy(20'000'110, 17);
    copy(5, 300'000);
    ASSERT_TRUE(copier.Append(ByteVector{4}));
    expected.push_back(4);
    copy(39'999'990, 300'000);  // behind the end: zeros
    copy(50'000'000, 10);
    ASSERT_TRUE(copier.Finish());
    EXPECT_EQ(copier.End(), expected.size());
    EXPECT_TRUE(ReadFile(folder / "target") == expected);
}

TEST(RangeCopier, CopiesWhatCannotBeReadAsZeros) {
    const TempFolder folder;
    ByteVector bytes = Noise(1'000'000);
    test::MemoryFile source(bytes);
    source.BreakRange(500'000, 1);
    auto target = File::Create(folder / "target", File::Existing::Refuse);
    ASSERT_TRUE(target);
    WindowReader reader(source);
    RangeCopier copier(nullptr, reader, target.Value(), 0);
    ASSERT_TRUE(copier.CopyRange(0, bytes.size()));
    ASSERT_TRUE(copier.Finish());
    std::fill_n(bytes.begin() + 499'712, 512, std::uint8_t{0});
    EXPECT_TRUE(ReadFile(folder / "target") == bytes);
    EXPECT_EQ(reader.Unreadable().TotalBytes(), 512U);
}

}  // namespace
}  // namespace clipfix::platform
