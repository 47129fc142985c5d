#include <csignal>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <sys/stat.h>

#include "cli/camera_movie.h"
#include "cli/cli_run.h"
#include "support/random.h"
#include "support/small_file_system.h"

namespace clipfix::test {
namespace {

using nlohmann::json;
using namespace std::chrono_literals;

// What the command line says where a movie cannot be repaired: one sentence, a status of its own,
// and nothing left behind.

std::string ErrorOf(const std::vector<std::string>& arguments) {
    return Clipfix(arguments).err;
}

TEST(RepairOfMoviesThatFails, RefusesWhatCannotBeOpened) {
    const TempFolder folder;
    WriteFile(folder / "good.mp4", CameraMovie());
    const DamagedFile damaged(folder / "clip.mp4", WithoutMoov(CameraMovie()));
    std::filesystem::create_directory(folder / "folder.mp4");
    ASSERT_EQ(::mkfifo((folder / "pipe.mov").c_str(), 0600), 0);
    for (const auto& [name, words] :
         std::vector<std::pair<std::string, std::string>>{{"missing.mp4", "No such file"},
                                                          {"folder.mp4", "not a plain file"},
                                                          {"pipe.mov", "not a plain file"}}) {
        const auto path = (folder / name).string();
        const auto good = (folder / "good.mp4").string();
        ExpectRefusal(folder, {"repair", path, "-r", good}, 5, words);
        ExpectRefusal(folder, {"repair", damaged.Path(), "-r", path}, 5, words);
        ExpectRefusal(folder, {"scan", path, "-r", good}, 5, words);
        ExpectRefusal(folder, {"check", path}, 5, words);
    }
}

TEST(RepairOfMoviesThatFails, AsksForAReferenceWhereThereIsNoStructureAtAll) {
    const TempFolder folder;
    WriteFile(folder / "empty.mp4", {});
    WriteFile(folder / "noise.mov", Random(3).Bytes(20000));
    for (const auto* name : {"empty.mp4", "noise.mov"}) {
        EXPECT_EQ(ErrorOf({"repair", (folder / name).string()}),
                  "clipfix: the file's own structure cannot be read: a healthy recording from the "
                  "same device is needed (--reference FILE)\n");
        ExpectRefusal(folder, {"repair", (folder / name).string()}, 3, "needed");
    }
}

TEST(RepairOfMoviesThatFails, SaysThatNothingWasFoundWithAReferenceThatCouldServe) {
    const TempFolder folder;
    WriteFile(folder / "empty.mp4", {});
    WriteFile(folder / "noise.mov", Random(3).Bytes(20000));
    WriteFile(folder / "good.mp4", CameraMovie());
    for (const auto* name : {"empty.mp4", "noise.mov"}) {
        const std::vector<std::string> arguments{"repair", (folder / name).string(), "-r",
                                                 (folder / "good.mp4").string()};
        EXPECT_EQ(ErrorOf(arguments),
                  "clipfix: nothing could be recovered from this file with this reference\n");
        ExpectRefusal(folder, arguments, 1, "nothing");
    }
}

// The file's own movie can be read, and cannot serve: that is no want of a reference, but one may
// help.
TEST(RepairOfMoviesThatFails, SaysWhyAFileCannotServeAsItsOwnReference) {
    const TempFolder folder;
    WriteFile(folder / "clip.mp4", Movie("-c:v mpeg4 -c:a aac"));
    EXPECT_EQ(ErrorOf({"repair", (folder / "clip.mp4").string()}),
              "clipfix: nothing could be recovered from this file by itself (its video is neither "
              "H.264 (avc1) nor H.265 (hvc1)); a healthy reference may help\n");
    ExpectRefusal(folder, {"repair", (folder / "clip.mp4").string()}, 1, "by itself");
}

ByteVector WithoutParameterSets(ByteVector movie) {
    const std::size_t at = FindText(movie, "avcC");
    std::copy_n("free", 4, movie.begin() + static_cast<std::ptrdiff_t>(at));
    return movie;
}

TEST(RepairOfMoviesThatFails, SaysWhyAReferenceCannotServe) {
    const TempFolder folder;
    const DamagedFile damaged(folder / "clip.mp4", WithoutMoov(CameraMovie()));
    WriteFile(folder / "noise.mp4", ByteVector(5000, 0x55));
    WriteFile(folder / "cut.mp4", WithoutMoov(CameraMovie()));
    WriteFile(folder / "mpeg4.mp4", Movie("-c:v mpeg4 -c:a aac"));
    WriteFile(folder / "hev1.mp4",
              Movie("-c:v libx265 -x265-params log-level=none -tag:v hev1 -an"));
    WriteFile(folder / "bare.mp4", WithoutParameterSets(CameraMovie()));
    WriteFile(folder / "sound.mp4", Movie("-map 1 -map 0 -c:v libx264 -bf 0 -c:a aac"));
    const std::string kNoMovie = "no movie that can be read was found in it";
    const std::string kOtherVideo = "its video is neither H.264 (avc1) nor H.265 (hvc1)";
    for (const auto& [name, why] : std::vector<std::pair<std::string, std::string>>{
             {"noise.mp4", kNoMovie},
             {"cut.mp4", kNoMovie},
             {"mpeg4.mp4", kOtherVideo},
             {"hev1.mp4", kOtherVideo},
             {"bare.mp4", "the description of its video lacks the parameter sets"},
             {"sound.mp4", "its first track is not the video"}}) {
        const auto path = (folder / name).string();
        const std::string sentence = "clipfix: the reference cannot serve: " + why + "\n";
        for (const auto* command : {"repair", "scan"}) {
            EXPECT_EQ(ErrorOf({command, damaged.Path(), "-r", path}), sentence) << command;
            ExpectRefusal(folder, {command, damaged.Path(), "-r", path}, 4, why);
        }
        const auto check = Clipfix({"check", path, "--json"});
        EXPECT_EQ(check.status, 4);
        EXPECT_EQ(json::parse(check.out)["why"], why) << name;
        const auto repair = Clipfix({"repair", damaged.Path(), "-r", path, "--json"});
        EXPECT_EQ(repair.status, 4);
        EXPECT_EQ(json::parse(repair.out)["outcome"], "reference-unusable");
    }
}

TEST(RepairOfMoviesThatFails, SaysSoWhereAReferenceOfAnotherKindFindsNothing) {
    const TempFolder folder;
    const DamagedFile damaged(folder / "clip.mp4", WithoutMoov(CameraMovie()));
    WriteFile(folder / "hevc.mp4",
              Movie("-c:v libx265 -x265-params log-level=none -tag:v hvc1 -an"));
    ExpectRefusal(folder, {"repair", damaged.Path(), "-r", (folder / "hevc.mp4").string()}, 1,
                  "with this reference");
}

TEST(RepairOfMoviesThatFails, NeverWritesToTheReference) {
    const TempFolder folder;
    const DamagedFile damaged(folder / "clip.mp4", WithoutMoov(CameraMovie()));
    const DamagedFile reference(folder / "good.mov", CameraMovie());
    ExpectRefusal(folder,
                  {"repair", damaged.Path(), "-r", reference.Path(), "-f", "-o", reference.Path()},
                  2, "the output is the reference");
}

TEST(RepairOfMoviesThatFails, KeepsTheOldFile) {
    const TempFolder folder;
    const DamagedFile damaged(folder / "clip.mp4", WithoutMoov(CameraMovie()));
    const DamagedFile nothing(folder / "nothing.mp4", ByteVector(5000, 0x11));
    const DamagedFile reference(folder / "good.mp4", CameraMovie());
    const DamagedFile old(folder / "old.mov", ByteVector{1, 2, 3});
    ExpectRefusal(folder, {"repair", damaged.Path(), "-r", reference.Path(), "-o", old.Path()}, 2,
                  "exists already");
    ExpectRefusal(folder,
                  {"repair", nothing.Path(), "-r", reference.Path(), "-f", "-o", old.Path()}, 1,
                  "with this reference");
}

const ByteVector& PcmMovie() {
    static const ByteVector kMovie =
        Movie("-c:v libx264 -bf 0 -g 25 -c:a pcm_s16le -chunk_duration 500000", "mov");
    return kMovie;
}

// A movie with so much silence between two of its chunks that a small disk cannot hold it. It is a
// hole in the damaged file, and sound in the repaired one.
void MakeLongSilence(const std::filesystem::path& path, std::uint64_t bytes) {
    const ByteVector media = WithoutMoov(PcmMovie());
    WriteFile(path, media);
    std::filesystem::resize_file(path, media.size() + bytes);
    std::ofstream(path, std::ios::binary | std::ios::app)
        .write(std::string(media.begin(), media.end()).data(),
               static_cast<std::streamsize>(media.size()));
}
constexpr std::uint64_t kSilence = std::uint64_t{115} << 20U;

const std::string kDiskFull =
    "clipfix: the repaired file could not be written: cannot write: No space left on device\n";

// The space test looks at the small reference; what is written is far larger.
TEST(RepairOfMoviesThatFails, ReportsADiskThatFillsUp) {
    const SmallFileSystem disk(std::uint64_t{104} << 20U);
    if (!disk.IsMounted()) {
        GTEST_SKIP() << "a file system can only be mounted by root";
    }
    const TempFolder folder;
    MakeLongSilence(folder / "clip.mov", kSilence);
    const DamagedFile reference(folder / "good.mov", PcmMovie());
    const DamagedFile old(disk / "out.mov", ByteVector{1, 2, 3});
    const auto run = Clipfix(
        {"repair", (folder / "clip.mov").string(), "-r", reference.Path(), "-f", "-o", old.Path()});
    EXPECT_EQ(run.status, 5) << run.out;
    EXPECT_EQ(run.err, kDiskFull);
    EXPECT_EQ(Names(disk.Path()), std::set<std::string>{"out.mov"});
}

// All sample data still fit, to the last page of the disk, and the tables behind them do not.
TEST(RepairOfMoviesThatFails, ReportsADiskThatIsFullBeforeTheTablesAreWritten) {
    constexpr std::uint64_t kPage = 4096;
    const TempFolder folder;
    const auto path = folder / "clip.mov";
    const auto output = folder / "whole.mov";
    const DamagedFile reference(folder / "good.mov", PcmMovie());
    const auto repair = [&](const std::filesystem::path& to) {
        return Clipfix({"repair", path.string(), "-r", reference.Path(), "-o", to.string()});
    };
    MakeLongSilence(path, kSilence);
    ASSERT_EQ(repair(output).status, 0);
    ByteVector head(16);
    std::ifstream(output, std::ios::binary).read(reinterpret_cast<char*>(head.data()), 16);
    const std::uint64_t data = ReadBig64(head, 8);
    ASSERT_GT(data, kSilence);
    std::filesystem::remove(output);

    const std::uint64_t rest = (kPage - data % kPage) % kPage;
    MakeLongSilence(path, kSilence + rest);
    const SmallFileSystem disk(data + rest);
    if (!disk.IsMounted()) {
        GTEST_SKIP() << "a file system can only be mounted by root";
    }
    const auto run = repair(disk / "out.mov");
    EXPECT_EQ(run.status, 5) << run.out;
    EXPECT_EQ(run.err, kDiskFull);
    EXPECT_TRUE(Names(disk.Path()).empty());
    const SmallFileSystem larger(data + rest + 16 * kPage);
    EXPECT_EQ(repair(larger / "out.mov").status, 0);
}

TEST(RepairOfMoviesThatFails, WantsAHundredMebibytesToSpare) {
    const TempFolder folder;
    const SmallFileSystem disk(std::uint64_t{90} << 20U);
    if (!disk.IsMounted()) {
        GTEST_SKIP() << "a file system can only be mounted by root";
    }
    const DamagedFile damaged(folder / "clip.mp4", WithoutMoov(CameraMovie()));
    const DamagedFile reference(folder / "good.mp4", CameraMovie());
    ExpectRefusal(
        folder,
        {"repair", damaged.Path(), "-r", reference.Path(), "-o", (disk / "out.mov").string()}, 5,
        "too little free space");
    EXPECT_TRUE(Names(disk.Path()).empty());
}

// A camera's file with eight gigabytes of nothing behind it: the scan has work for a while.
void MakeLongWork(const std::filesystem::path& path) {
    WriteFile(path, WithoutMoov(CameraMovie()));
    std::filesystem::resize_file(path, std::uintmax_t{1} << 33U);
}

TEST(RepairOfMoviesThatFails, LeavesNothingBehindAfterAnInterrupt) {
    for (const int number : {SIGINT, SIGTERM}) {
        const TempFolder folder;
        MakeLongWork(folder / "clip.mp4");
        const DamagedFile reference(folder / "good.mp4", CameraMovie());
        const auto start = std::chrono::steady_clock::now();
        const auto run = Clipfix({"repair", (folder / "clip.mp4").string(), "-r", reference.Path()},
                                 {.signal = std::pair(number, 200ms)});
        EXPECT_EQ(run.status, 130) << run.err;
        EXPECT_EQ(run.err, "clipfix: cancelled; nothing was left behind\n");
        EXPECT_LT(std::chrono::steady_clock::now() - start, 5s);
        EXPECT_EQ(Names(folder.Path()), (std::set<std::string>{"clip.mp4", "good.mp4"}));
    }
}

TEST(RepairOfMoviesThatFails, CleansUpAfterAKilledRunTheNextTime) {
    const TempFolder folder;
    MakeLongWork(folder / "clip.mp4");
    const DamagedFile reference(folder / "good.mp4", CameraMovie());
    const std::vector<std::string> arguments{"repair", (folder / "clip.mp4").string(), "-r",
                                             reference.Path()};
    EXPECT_EQ(Clipfix(arguments, {.signal = std::pair(SIGKILL, 200ms)}).status, 128 + SIGKILL);
    EXPECT_FALSE(std::filesystem::exists(folder / "clip_repaired.mov"));
    WriteFile(folder / "clip.mp4", WithoutMoov(CameraMovie()));
    EXPECT_EQ(Clipfix(arguments).status, 0);
    EXPECT_EQ(Names(folder.Path()),
              (std::set<std::string>{"clip.mp4", "clip_repaired.mov", "good.mp4"}));
}

TEST(RepairOfMoviesThatFails, LosesOnlyTheSectorsThatCannotBeRead) {
    const TempFolder folder;
    const ByteVector bytes = WithoutMoov(CameraMovie());
    const DamagedFile damaged(folder / "clip.mp4", bytes);
    const DamagedFile reference(folder / "good.mp4", CameraMovie());
    const std::uint64_t from = bytes.size() / 2 / 512 * 512;
    const auto run =
        Clipfix({"repair", damaged.Path(), "-r", reference.Path(), "--json", "-o",
                 (folder / "broken.mov").string()},
                {.environment = {"LD_PRELOAD=" CLIPFIX_FAILING_MACHINE,
                                 "ASAN_OPTIONS=verify_asan_link_order=0:detect_leaks=0",
                                 "FAILING_READS_FILE=" + damaged.Path(),
                                 "FAILING_READS_FROM=" + std::to_string(from + 100),
                                 "FAILING_READS_LENGTH=512"}});  // touches two sectors
    ASSERT_EQ(run.status, 0) << run.err;
    EXPECT_EQ(json::parse(run.out)["bytes_unreadable"], 1024);

    // The same as of a file in which those two sectors are zero.
    ByteVector zeroed = bytes;
    std::fill_n(zeroed.begin() + static_cast<std::ptrdiff_t>(from), 1024, std::uint8_t{0});
    WriteFile(folder / "zeroed.mp4", zeroed);
    EXPECT_EQ(Clipfix({"repair", (folder / "zeroed.mp4").string(), "-r", reference.Path()}).status,
              0);
    EXPECT_TRUE(ReadFile(folder / "zeroed_repaired.mov") == ReadFile(folder / "broken.mov"));
}

// What decoders think of noise is nobody's business.
TEST(RepairOfMoviesThatFails, SaysNothingOfItsOwnOnNoiseWhereSoundShouldBe) {
    const TempFolder folder;
    ByteVector bytes = WithoutMoov(CameraMovie());
    const ByteVector media = bytes;
    AppendBytes(bytes, Random(5).Bytes(100000));
    AppendBytes(bytes, media);
    const DamagedFile damaged(folder / "clip.mp4", bytes);
    const DamagedFile reference(folder / "good.mp4", CameraMovie());
    const auto run = Clipfix({"repair", damaged.Path(), "-r", reference.Path()});
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.err, "");
}

}  // namespace
}  // namespace clipfix::test
