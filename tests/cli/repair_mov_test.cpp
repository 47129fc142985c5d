#include <csignal>
#include <filesystem>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "cli/camera_movie.h"
#include "cli/cli_run.h"
#include "support/avi_builder.h"
#include "support/media_tools.h"
#include "support/small_file_system.h"

namespace clipfix::test {
namespace {

using nlohmann::json;
using namespace std::chrono_literals;

TEST(RepairCommandOnMovies, TakesAFileWithAReadableStructureAsItsOwnReference) {
    const TempFolder folder;
    const DamagedFile damaged(folder / "clip.mp4", CameraMovie());
    const auto run = Clipfix({"repair", damaged.Path(), "--json"});
    ASSERT_EQ(run.status, 0) << run.err;
    const json object = json::parse(run.out);
    EXPECT_EQ(object["kind"], "mov");
    EXPECT_EQ(object["output"], (folder / "clip_repaired.mov").string());
    EXPECT_EQ(object["video_format"], "avc1");
    EXPECT_EQ(object["audio_format"], "mp4a");
    EXPECT_EQ(object["video_samples"], 75);
    EXPECT_EQ(Names(folder.Path()), (std::set<std::string>{"clip.mp4", "clip_repaired.mov"}));
}

TEST(RepairCommandOnMovies, AsksForAReferenceWhereTheStructureIsGone) {
    const TempFolder folder;
    const DamagedFile damaged(folder / "clip.MP4", WithoutMoov(CameraMovie()));
    ExpectRefusal(folder, {"repair", damaged.Path()}, 3, "--reference");
    const auto run = Clipfix({"repair", damaged.Path(), "--json"});
    EXPECT_EQ(run.status, 3);
    EXPECT_EQ(json::parse(run.out)["outcome"], "reference-needed");
}

TEST(RepairCommandOnMovies, RepairsWithAReferenceSoThatEveryPictureIsThere) {
    const TempFolder folder;
    const DamagedFile damaged(folder / "clip.mp4", WithoutMoov(CameraMovie()));
    const DamagedFile reference(folder / "good.mp4", CameraMovie());
    const auto run = Clipfix({"repair", damaged.Path(), "-r", reference.Path(), "--json"});
    ASSERT_EQ(run.status, 0) << run.err;
    EXPECT_EQ(json::parse(run.out)["reference"], reference.Path());
    const auto packets = Probe(folder / "clip_repaired.mov", "packet=codec_type,size");
    const auto original = Probe(folder / "good.mp4", "packet=codec_type,size");
    const auto pictures = [](const std::vector<ProbedFields>& all) {
        std::vector<std::string> sizes;
        for (const auto& packet : all) {
            if (packet.at("codec_type") == "video") {
                sizes.push_back(packet.at("size"));
            }
        }
        return sizes;
    };
    EXPECT_EQ(pictures(packets), pictures(original));
    EXPECT_EQ(pictures(packets).size(), 75U);
}

TEST(CheckCommand, TellsWhatIsInAFile) {
    const TempFolder folder;
    WriteFile(folder / "good.mp4", CameraMovie());
    const auto run = Clipfix({"check", (folder / "good.mp4").string(), "--json"});
    ASSERT_EQ(run.status, 0) << run.err;
    const json object = json::parse(run.out);
    EXPECT_EQ(object["usable"], true);
    EXPECT_TRUE(object["why"].is_null());
    ASSERT_EQ(object["tracks"].size(), 2U);
    EXPECT_EQ(object["tracks"][0]["kind"], "video");
    EXPECT_EQ(object["tracks"][0]["coder"], "avc1");
    EXPECT_EQ(object["tracks"][0]["width"], 160);
    EXPECT_EQ(object["tracks"][0]["height"], 120);
    EXPECT_EQ(object["tracks"][0]["samples"], 75);
    EXPECT_EQ(object["tracks"][1]["kind"], "audio");
    EXPECT_EQ(object["tracks"][1]["coder"], "mp4a");
    EXPECT_EQ(object["tracks"][1]["timescale"], 44100);
    const auto text = Clipfix({"check", (folder / "good.mp4").string()});
    EXPECT_NE(text.out.find("can serve as a reference"), std::string::npos);
}

TEST(CheckCommand, SaysWhyAFileCannotServe) {
    const TempFolder folder;
    WriteFile(folder / "cut.mp4", WithoutMoov(CameraMovie()));
    const auto run = Clipfix({"check", (folder / "cut.mp4").string(), "--json"});
    EXPECT_EQ(run.status, 4);
    EXPECT_EQ(json::parse(run.out)["usable"], false);
    EXPECT_EQ(Clipfix({"check", (folder / "missing.mp4").string()}).status, 5);
}

TEST(ScanCommand, ListsTheChunksAndWritesNothing) {
    const TempFolder folder;
    const DamagedFile damaged(folder / "clip.mp4", WithoutMoov(CameraMovie()));
    const DamagedFile reference(folder / "good.mp4", CameraMovie());
    const auto run = Clipfix({"scan", damaged.Path(), "-r", reference.Path(), "--json"});
    ASSERT_EQ(run.status, 0) << run.err;
    const json object = json::parse(run.out);
    std::uint64_t pictures = 0;
    for (const auto& chunk : object["chunks"]) {
        pictures += chunk["kind"] == "video" ? chunk["samples"].get<std::uint64_t>() : 0;
    }
    EXPECT_EQ(pictures, 75U);
    EXPECT_EQ(Names(folder.Path()), (std::set<std::string>{"clip.mp4", "good.mp4"}));
    ExpectRefusal(folder, {"scan", damaged.Path()}, 3, "reference");
}

TEST(ScanCommand, ListsTheChunksOfAnAvi) {
    const TempFolder folder;
    AviFile file;
    file.chunks = {AviPicture(300), AviSound(40), AviPicture(301)};
    const ByteVector bytes = file.Bytes();
    const DamagedFile damaged(folder / "clip.avi", bytes);
    const auto run = Clipfix({"scan", damaged.Path(), "--json"});
    ASSERT_EQ(run.status, 0) << run.err;
    const json object = json::parse(run.out);
    ASSERT_EQ(object["chunks"].size(), 3U);
    const std::size_t first = FindText(bytes, "00dc");
    EXPECT_EQ(object["chunks"][0]["kind"], "video");
    EXPECT_EQ(object["chunks"][0]["name"], "00dc");
    EXPECT_EQ(object["chunks"][0]["offset"], first);
    EXPECT_EQ(object["chunks"][0]["bytes"], 300);
    EXPECT_EQ(object["chunks"][1]["kind"], "audio");
    EXPECT_EQ(object["chunks"][1]["offset"], first + 308);
    EXPECT_EQ(object["chunks"][2]["bytes"], 301);
    EXPECT_EQ(Names(folder.Path()), std::set<std::string>{"clip.avi"});
}

}  // namespace
}  // namespace clipfix::test
