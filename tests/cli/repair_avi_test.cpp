#include <csignal>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <set>
#include <sys/mount.h>
#include <sys/stat.h>
#include <unistd.h>

#include "cli/cli_run.h"
#include "support/avi_builder.h"
#include "support/run_process.h"
#include "support/small_file_system.h"
#include "support/temp_folder.h"

namespace clipfix::test {
namespace {

using nlohmann::json;
using std::filesystem::exists;
using namespace std::chrono_literals;

ByteVector SmallAvi() {
    AviFile file;
    file.chunks = AviChunks(20);
    return file.Bytes();
}

TEST(RepairCommand, RepairsTheExample) {
    const TempFolder folder;
    const auto run = Clipfix(
        {"repair", CLIPFIX_EXAMPLES "/damaged.avi", "-o", (folder / "repaired.avi").string()});
    EXPECT_EQ(run.status, 0) << run.err;
    EXPECT_TRUE(run.err.empty()) << run.err;
    EXPECT_NE(run.out.find("repaired: "), std::string::npos);
    EXPECT_EQ(Names(folder.Path()), std::set<std::string>{"repaired.avi"});
}

TEST(RepairCommand, PutsTheResultBesideTheDamagedFileByDefault) {
    for (const auto* name : {"clip.avi", "clip.divx", "clip.XVID", "clip"}) {
        const TempFolder folder;
        const DamagedFile damaged(folder / name, SmallAvi());
        EXPECT_EQ(Clipfix({"repair", damaged.Path()}).status, 0) << name;
        EXPECT_EQ(Names(folder.Path()), (std::set<std::string>{name, "clip_repaired.avi"}));
    }
}

TEST(RepairCommand, PrintsExactlyOneObjectOfTheWholeContract) {
    const TempFolder folder;
    const DamagedFile damaged(folder / "clip.avi", SmallAvi());
    const auto run = Clipfix({"repair", damaged.Path(), "--json"});
    ASSERT_EQ(run.status, 0);
    EXPECT_TRUE(run.err.empty());
    const json object = json::parse(run.out);
    const std::set<std::string> expected{
        "outcome",      "kind",         "damaged",          "reference",
        "output",       "bytes_read",   "bytes_unreadable", "output_size",
        "video_chunks", "audio_chunks", "video_samples",    "audio_samples",
        "video_format", "audio_format", "elapsed_seconds",  "message"};
    std::set<std::string> keys;
    for (const auto& item : object.items()) {
        keys.insert(item.key());
    }
    EXPECT_EQ(keys, expected);
    EXPECT_EQ(object["outcome"], "repaired");
    EXPECT_EQ(object["kind"], "avi");
    EXPECT_EQ(object["damaged"], damaged.Path());
    EXPECT_TRUE(object["reference"].is_null());
    EXPECT_EQ(object["output"], (folder / "clip_repaired.avi").string());
    EXPECT_EQ(object["video_chunks"], 20);
    EXPECT_EQ(object["audio_chunks"], 10);
    EXPECT_EQ(object["video_format"], "XVID");
    EXPECT_EQ(object["bytes_unreadable"], 0);
    EXPECT_EQ(object["output_size"], std::filesystem::file_size(folder / "clip_repaired.avi"));
}

TEST(RepairCommand, ListsThePercentsOnlyWhenTraced) {
    const TempFolder folder;
    const DamagedFile damaged(folder / "clip.avi", SmallAvi());
    const auto run = Clipfix({"repair", damaged.Path(), "--json", "--trace"});
    const json object = json::parse(run.out);
    ASSERT_TRUE(object["percents"].is_array());
    ASSERT_FALSE(object["percents"].empty());
    int last = 0;
    for (const int percent : object["percents"]) {
        EXPECT_GT(percent, last);
        last = percent;
    }
}

TEST(RepairCommand, SaysNothingWhenQuiet) {
    const TempFolder folder;
    const DamagedFile damaged(folder / "clip.avi", SmallAvi());
    const auto run = Clipfix({"repair", damaged.Path(), "-q"});
    EXPECT_EQ(run.status, 0);
    EXPECT_TRUE(run.out.empty() && run.err.empty());
}

TEST(RepairCommand, TakesPathsWithAnyLetters) {
    for (const std::string name :
         {"a b.avi", "it's.avi", "\"q\".avi", "line\nfeed.avi", "\xC3\xA4\xE6\xBC\xA2.avi",
          "\xFF\xFE.avi", "-dash.avi", "$tp.avi"}) {
        const TempFolder folder;
        const DamagedFile damaged(folder / name, SmallAvi());
        const auto run = Clipfix({"repair", "--json", "--", damaged.Path()});
        EXPECT_EQ(run.status, 0) << name << run.err;
        EXPECT_TRUE(json::accept(run.out)) << name;
        EXPECT_EQ(Names(folder.Path()).size(), 2U) << name;
    }
}

TEST(RepairCommand, RefusesWhatCannotBeOpened) {
    const TempFolder folder;
    std::filesystem::create_directory(folder / "folder.avi");
    ASSERT_EQ(::mkfifo((folder / "pipe.avi").c_str(), 0600), 0);
    ExpectRefusal(folder, {"repair", (folder / "missing.avi").string()}, 5, "No such file");
    ExpectRefusal(folder, {"repair", (folder / "folder.avi").string()}, 5, "not a plain file");
    ExpectRefusal(folder, {"repair", (folder / "pipe.avi").string()}, 5, "not a plain file");
    ExpectRefusal(folder, {"repair", "/dev/zero", "-o", (folder / "o.avi").string()}, 5,
                  "not a plain file");
    if (::geteuid() != 0) {
        WriteFile(folder / "locked.avi", SmallAvi());
        std::filesystem::permissions(folder / "locked.avi", std::filesystem::perms::none);
        ExpectRefusal(folder, {"repair", (folder / "locked.avi").string()}, 5, "Permission denied");
    }
}

TEST(RepairCommand, SaysThatNothingCouldBeRecovered) {
    const TempFolder folder;
    WriteFile(folder / "empty.avi", {});
    WriteFile(folder / "100.avi", ByteVector(100, 0x41));
    WriteFile(folder / "101.avi", ByteVector(101, 0x41));
    ByteVector text;
    for (int i = 0; i < 1000; ++i) {
        AppendText(text, "Dear diary, today the camera fell into the lake.\n");
    }
    WriteFile(folder / "text.avi", text);
    for (const auto* name : {"empty.avi", "100.avi", "101.avi", "text.avi"}) {
        ExpectRefusal(folder, {"repair", (folder / name).string()}, 1,
                      "nothing could be recovered");
    }
    const auto run = Clipfix({"repair", "--json", (folder / "101.avi").string()});
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(json::parse(run.out)["outcome"], "unhealthy");
    EXPECT_TRUE(json::parse(run.out)["output"].is_null());
}

TEST(RepairCommand, NeverWritesToItsInput) {
    const TempFolder folder;
    const DamagedFile damaged(folder / "clip.avi", SmallAvi());
    std::filesystem::create_hard_link(damaged.Path(), folder / "hard.avi");
    std::filesystem::create_symlink(damaged.Path(), folder / "soft.avi");
    for (const auto* name : {"clip.avi", "hard.avi", "soft.avi"}) {
        ExpectRefusal(folder, {"repair", damaged.Path(), "-f", "-o", (folder / name).string()}, 2,
                      "the damaged file itself");
    }
}

TEST(RepairCommand, ReplacesAnExistingFileOnlyByForce) {
    const TempFolder folder;
    const DamagedFile damaged(folder / "clip.avi", SmallAvi());
    WriteFile(folder / "old.avi", ByteVector{1, 2, 3});
    const auto old = (folder / "old.avi").string();
    ExpectRefusal(folder, {"repair", damaged.Path(), "-o", old}, 2, "exists already");
    EXPECT_EQ(ReadFile(old), (ByteVector{1, 2, 3}));
    EXPECT_EQ(Clipfix({"repair", damaged.Path(), "-o", old, "--force"}).status, 0);
    EXPECT_GT(ReadFile(old).size(), 1000U);
    std::filesystem::create_directory(folder / "folder");
    ExpectRefusal(folder, {"repair", damaged.Path(), "-f", "-o", (folder / "folder").string()}, 2,
                  "no plain file");
}

TEST(RepairCommand, KeepsTheOldFileWhenNothingCouldBeRecovered) {
    const TempFolder folder;
    WriteFile(folder / "clip.avi", ByteVector(5000, 0));
    WriteFile(folder / "old.avi", ByteVector{1, 2, 3});
    const auto run = Clipfix(
        {"repair", (folder / "clip.avi").string(), "-f", "-o", (folder / "old.avi").string()});
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(ReadFile(folder / "old.avi"), (ByteVector{1, 2, 3}));
}

TEST(RepairCommand, SaysSoWhereItCannotWrite) {
    const TempFolder folder;
    const DamagedFile damaged(folder / "clip.avi", SmallAvi());
    ExpectRefusal(folder,
                  {"repair", damaged.Path(), "-o", (folder / "no/such/folder.avi").string()}, 5,
                  "work folder");
    ExpectRefusal(folder, {"repair", damaged.Path(), "-o", "/proc/clip.avi"}, 5, "work folder");
}

TEST(RepairCommand, WantsAHundredMebibytesToSpare) {
    const TempFolder folder;
    const SmallFileSystem disk(std::uint64_t{90} << 20U);
    if (!disk.IsMounted()) {
        GTEST_SKIP() << "a file system can only be mounted by root";
    }
    const DamagedFile damaged(folder / "clip.avi", SmallAvi());
    const auto run = Clipfix({"repair", damaged.Path(), "-o", (disk.Path() / "clip.avi").string()});
    EXPECT_EQ(run.status, 5);
    EXPECT_NE(run.err.find("too little free space"), std::string::npos) << run.err;
    EXPECT_TRUE(Names(disk.Path()).empty());
}

TEST(RepairCommand, LosesOnlyTheSectorsThatCannotBeRead) {
    const TempFolder folder;
    AviFile file;
    file.chunks = AviChunks(300, 2000);
    const ByteVector bytes = file.Bytes();
    const DamagedFile damaged(folder / "clip.avi", bytes);
    const std::uint64_t from = bytes.size() / 2 / 512 * 512;
    const auto repair = [&](const std::string& output, std::uint64_t length) {
        const auto run =
            Clipfix({"repair", damaged.Path(), "--json", "-o", (folder / output).string()},
                    {.environment = {"LD_PRELOAD=" CLIPFIX_FAILING_MACHINE,
                                     "ASAN_OPTIONS=verify_asan_link_order=0:detect_leaks=0",
                                     "FAILING_READS_FILE=" + damaged.Path(),
                                     "FAILING_READS_FROM=" + std::to_string(from + 100),
                                     "FAILING_READS_LENGTH=" + std::to_string(length)}});
        EXPECT_EQ(run.status, 0) << run.err;
        return json::parse(run.out);
    };
    const json whole = repair("whole.avi", 0);
    EXPECT_EQ(whole["bytes_unreadable"], 0);
    const json broken = repair("broken.avi", 512);  // touches two sectors
    EXPECT_EQ(broken["bytes_unreadable"], 1024);

    // The same as of a file in which those two sectors are zero.
    ByteVector zeroed = bytes;
    std::fill_n(zeroed.begin() + static_cast<std::ptrdiff_t>(from), 1024, std::uint8_t{0});
    WriteFile(folder / "zeroed.avi", zeroed);
    EXPECT_EQ(Clipfix({"repair", (folder / "zeroed.avi").string()}).status, 0);
    EXPECT_TRUE(ReadFile(folder / "zeroed_repaired.avi") == ReadFile(folder / "broken.avi"));
}

// A file on which the pass has work for a while: noise, a gigabyte of it in a hole at the end.
std::filesystem::path LongWork(const TempFolder& folder) {
    auto bytes = SmallAvi();
    const auto path = folder / "long.avi";
    WriteFile(path, bytes);
    std::filesystem::resize_file(path, std::uintmax_t{1} << 33U);
    return path;
}

TEST(RepairCommand, LeavesNothingBehindAfterAnInterrupt) {
    for (const int number : {SIGINT, SIGTERM}) {
        const TempFolder folder;
        const auto path = LongWork(folder);
        const auto start = std::chrono::steady_clock::now();
        const auto run = Clipfix({"repair", path.string()}, {.signal = std::pair(number, 200ms)});
        EXPECT_EQ(run.status, 130) << run.err;
        EXPECT_NE(run.err.find("cancelled"), std::string::npos);
        EXPECT_LT(std::chrono::steady_clock::now() - start, 5s);
        EXPECT_EQ(Names(folder.Path()), std::set<std::string>{"long.avi"});
    }
}

TEST(RepairCommand, CleansUpAfterAKilledRunTheNextTime) {
    const TempFolder folder;
    const auto path = LongWork(folder);
    const auto killed = Clipfix({"repair", path.string()}, {.signal = std::pair(SIGKILL, 200ms)});
    EXPECT_EQ(killed.status, 128 + SIGKILL);
    EXPECT_FALSE(exists(folder / "long_repaired.avi"));
    std::filesystem::resize_file(path, SmallAvi().size());
    EXPECT_EQ(Clipfix({"repair", path.string()}).status, 0);
    EXPECT_EQ(Names(folder.Path()), (std::set<std::string>{"long.avi", "long_repaired.avi"}));
}

TEST(RepairCommand, CancelsByItselfWhereThePassCannotGoOn) {
    const TempFolder folder;
    // A stream that is neither picture nor sound, whose format nothing follows.
    AviStreamHeader header;
    header.fccType = "txts";
    AviFile file;
    file.streamLists = {AviVideoList(), AviStreamList(header, ByteVector(16, 0))};
    file.chunks = AviChunks(3);
    auto bytes = file.Bytes();
    const auto at = FindText(bytes, "txts");
    Erase(bytes, at - 20 + 84 + 16 - 0, bytes.size() - (at - 20 + 84 + 16));
    AppendZeros(bytes, 4000);
    const DamagedFile damaged(folder / "clip.avi", bytes);
    ExpectRefusal(folder, {"repair", damaged.Path()}, 1, "leads in a circle");
}

}  // namespace
}  // namespace clipfix::test
