#include <gtest/gtest.h>
#include <random>
#include <set>
#include <string>

#include "player/player_arguments.h"

namespace clipfix {
namespace {

PlayerArguments Parse(std::string_view argument, const std::set<std::string>& files = {}) {
    return ParsePlayerArguments(
        argument, [&](std::string_view path) { return files.count(std::string(path)) > 0; });
}

TEST(PlayerArguments, AreThePathTheNameAndTheSize) {
    const auto parsed = Parse("/w/$tp/Repaired.mov$$lake.mov$$12.50 MB$$$$1");
    EXPECT_EQ(parsed.path, "/w/$tp/Repaired.mov");
    EXPECT_EQ(parsed.name, "lake.mov");
    EXPECT_EQ(parsed.size, "12.50 MB");
    EXPECT_TRUE(parsed.needsNewerDecoder);
    EXPECT_FALSE(Parse("/w/$tp/Repaired.avi$$a.avi$$1.00 GB$$$$0").needsNewerDecoder);
}

TEST(PlayerArguments, AllowDollarsInTheName) {
    EXPECT_EQ(Parse("/w/Repaired.mov$$a$$b.mov$$1.00 MB$$$$0").name, "a$$b.mov");
    EXPECT_EQ(Parse("/w/Repaired.mov$$$a$.mov$$$1.00 MB$$$$0").name, "$a$.mov$");
    EXPECT_EQ(Parse("/w/Repaired.mov$$$a$.mov$$$1.00 MB$$$$0").size, "1.00 MB");
    EXPECT_EQ(Parse("/w/Repaired.mov$$$$1$$1.00 MB$$$$0").name, "$$1");
}

TEST(PlayerArguments, FindAPathThatHoldsDollarsByTheFileThatIsThere) {
    const std::string path = "/my$$films/$tp/Repaired.mov";
    const auto parsed = Parse(path + "$$a$$b.mov$$1.00 MB$$$$0", {path});
    EXPECT_EQ(parsed.path, path);
    EXPECT_EQ(parsed.name, "a$$b.mov");
    // Where no file is there, the first place counts.
    EXPECT_EQ(Parse(path + "$$a.mov$$1.00 MB$$$$0").path, "/my");
}

TEST(PlayerArguments, MayBeAPathAlone) {
    EXPECT_EQ(Parse("/films/lake.mov").path, "/films/lake.mov");
    EXPECT_EQ(Parse("/films/lake.mov").name, "lake.mov");
    EXPECT_EQ(Parse("/films/a$$b.mov", {"/films/a$$b.mov"}).path, "/films/a$$b.mov");
    EXPECT_EQ(Parse("/films/x$$1.00 MB$$$$0", {"/films/x$$1.00 MB$$$$0"}).path,
              "/films/x$$1.00 MB$$$$0");
}

TEST(PlayerArguments, GiveWhatIsThereWhenTheirEndIsMissing) {
    EXPECT_EQ(Parse("").path, "");
    EXPECT_EQ(Parse("").name, "");
    const auto parsed = Parse("/w/Repaired.mov$$lake.mov$$12.50 MB$$");
    EXPECT_EQ(parsed.path, "/w/Repaired.mov");
    EXPECT_EQ(parsed.name, "lake.mov");
    EXPECT_EQ(Parse("/w/Repaired.mov$$lake.mov").name, "lake.mov");
    EXPECT_EQ(Parse("/w/Repaired.mov$$").name, "Repaired.mov");
    EXPECT_EQ(Parse("$$$$1").path, "");
    EXPECT_EQ(Parse("$$$$$$$$1").path, "");
}

TEST(PlayerArguments, KeepBytesThatAreNotText) {
    EXPECT_EQ(Parse("/caf\xE9/Repaired.mov$$\xFF.mov$$1.00 MB$$$$0").path, "/caf\xE9/Repaired.mov");
}

TEST(PlayerArguments, OfAnyKindAreReadWithoutHarm) {
    std::mt19937 random(3);
    const std::string letters = "$$$$01ab/.";
    for (int round = 0; round < 20000; ++round) {
        std::string argument(random() % 40, ' ');
        for (char& letter : argument) {
            letter = letters[random() % letters.size()];
        }
        const auto parsed =
            ParsePlayerArguments(argument, [&](std::string_view) { return random() % 8 == 0; });
        EXPECT_LE(parsed.path.size(), argument.size());
        EXPECT_EQ(argument.compare(0, parsed.path.size(), parsed.path), 0) << argument;
    }
}

}  // namespace
}  // namespace clipfix
