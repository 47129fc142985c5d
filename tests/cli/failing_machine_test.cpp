#include <chrono>
#include <csignal>
#include <filesystem>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "cli/camera_movie.h"
#include "cli/cli_run.h"
#include "support/avi_builder.h"

namespace clipfix::test {
namespace {

using namespace std::chrono_literals;

// A finished movie gets its name only once it has reached the medium.

ProcessResult RepairOnto(const std::string& disk, const std::vector<std::string>& arguments,
                         ProcessOptions options = {}) {
    options.environment = {"LD_PRELOAD=" CLIPFIX_FAILING_MACHINE,
                           "ASAN_OPTIONS=verify_asan_link_order=0:detect_leaks=0", disk};
    return Clipfix(arguments, options);
}

TEST(Publish, ReportsADiskThatDoesNotKeepTheMovie) {
    const TempFolder folder;
    AviFile avi;
    avi.chunks = AviChunks(3);
    const DamagedFile film(folder / "film.avi", avi.Bytes());
    const DamagedFile clip(folder / "clip.mp4", WithoutMoov(CameraMovie()));
    const DamagedFile reference(folder / "good.mp4", CameraMovie());
    const auto before = Names(folder.Path());
    for (const std::vector<std::string>& arguments :
         {std::vector<std::string>{"repair", film.Path()},
          std::vector<std::string>{"repair", clip.Path(), "-r", reference.Path()}}) {
        const auto run = RepairOnto("FAILING_FLUSH=1", arguments);
        EXPECT_EQ(run.status, 5) << run.out;
        EXPECT_EQ(run.err, "clipfix: cannot write: Input/output error\n");
        EXPECT_EQ(Names(folder.Path()), before);
    }
}

TEST(Publish, CanBeInterruptedWhileTheDiskIsSlow) {
    const TempFolder folder;
    AviFile avi;
    avi.chunks = AviChunks(16, 1'000'000);  // four stretches on their way to the medium
    const DamagedFile film(folder / "film.avi", avi.Bytes());
    const auto start = std::chrono::steady_clock::now();
    const auto run = RepairOnto("SLOW_FLUSH=990", {"repair", film.Path(), "--json"},
                                {.signal = std::pair(SIGINT, 2000ms)});
    EXPECT_LT(std::chrono::steady_clock::now() - start, 4500ms);
    EXPECT_EQ(run.status, 130) << run.err;
    const auto report = nlohmann::json::parse(run.out);
    EXPECT_EQ(report["outcome"], "cancelled");
    EXPECT_EQ(report["message"], "cancelled; nothing was left behind");
    EXPECT_EQ(report["video_chunks"], 16) << "the repair itself was done";
    EXPECT_TRUE(report["output"].is_null());
    EXPECT_EQ(Names(folder.Path()), std::set<std::string>{"film.avi"});
}

// The last resort, where something fails that nobody thought of.
TEST(LastResort, IsOneSentenceAndAStatus) {
    const TempFolder folder;
    AviFile avi;
    avi.chunks = AviChunks(3);
    const DamagedFile film(folder / "film.avi", avi.Bytes());
    const auto run = RepairOnto("FAILING_THREADS=1", {"repair", film.Path()});
    EXPECT_EQ(run.status, 5);
    EXPECT_EQ(run.err, "clipfix: cannot go on: Resource temporarily unavailable\n");
    EXPECT_EQ(Names(folder.Path()), std::set<std::string>{"film.avi"});
}

}  // namespace
}  // namespace clipfix::test
