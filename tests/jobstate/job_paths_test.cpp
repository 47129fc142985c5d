#include "job/state/job_paths.h"

#include <gtest/gtest.h>

namespace clipfix {
namespace {

TEST(DisplayPath, StandsWholeBelowSixtyUnits) {
    const std::string path59(59, 'a');
    EXPECT_EQ(DisplayPath(path59, kDisplayLimit), path59);
}

TEST(DisplayPath, IsShortenedToFiftyEightUnitsFromSixtyOn) {
    const std::string path60 = std::string(30, 'a') + std::string(5, 'b') + std::string(25, 'c');
    const std::string shown = DisplayPath(path60, kDisplayLimit);
    EXPECT_EQ(shown, std::string(30, 'a') + "..." + std::string(25, 'c'));
    EXPECT_EQ(shown.size(), 58U);
}

TEST(DisplayPath, OfAReferenceIsShortenedFromSixtyTwoOn) {
    const std::string path61(61, 'a');
    EXPECT_EQ(ReferenceLabel(path61), "Healthy File: " + path61);
    EXPECT_EQ(ReferenceLabel(path61 + "b"),
              "Healthy File: " + std::string(30, 'a') + "..." + std::string(24, 'a') + "b");
}

TEST(DisplayPath, CountsInUtf16Units) {
    std::string path;
    for (int i = 0; i < 29; ++i) {
        path += "\xC3\xA9";  // one unit in two bytes
    }
    EXPECT_EQ(CountUnits(path), 29U);
    const std::string pair = "\xF0\x9F\x8E\xAC";  // one character of two units
    EXPECT_EQ(CountUnits(pair), 2U);
    // 29 + 2 + 29 = 60 units: the pair would be cut in two at 30, so it is left out.
    EXPECT_EQ(DisplayPath(path + pair + path, kDisplayLimit), path + "..." + path.substr(0, 50));
}

TEST(DisplayPath, KeepsBytesThatAreNoText) {
    const std::string bytes = "\xFF\xFE\xC3";
    EXPECT_EQ(CountUnits(bytes), 3U);
    EXPECT_EQ(DisplayPath(bytes, kDisplayLimit), bytes);
}

TEST(KindOfJob, IsDecidedByTheExtensionInAnyCase) {
    for (const char* name : {"/x/a.mov", "/x/a.MP4", "/x/a.Mp4", "/x/a.b.mOv"}) {
        JobState state;
        ChooseCorruptFile(state, name);
        EXPECT_EQ(state.g_bMovJob, 1) << name;
        EXPECT_EQ(state.g_bAviContinue, 0) << name;
    }
    for (const char* name : {"/x/a.avi", "/x/a.xvid", "/x/a.divx", "/x/a.txt", "/x.mp4/a", "a"}) {
        JobState state;
        ChooseCorruptFile(state, name);
        EXPECT_EQ(state.g_bMovJob, 0) << name;
        EXPECT_EQ(state.g_bAviContinue, 1) << name;
    }
}

TEST(KindOfJob, NotesPathNameExtensionAndLabels) {
    JobState state;
    ChooseCorruptFile(state, "/home/clips/Holiday.mp4");
    EXPECT_EQ(state.g_strCorruptPath, "/home/clips/Holiday.mp4");
    EXPECT_EQ(state.g_strCorruptCopy, "/home/clips/Holiday.mp4");
    EXPECT_EQ(state.g_strCorruptName, "Holiday.mp4");
    EXPECT_EQ(state.g_strCorruptExt, "MP4");
    EXPECT_EQ(state.g_strCorruptLabel, "Corrupted File: /home/clips/Holiday.mp4");
    ChooseCorruptFile(state, "/home/clips/Old.divx");
    EXPECT_EQ(state.g_strCorruptLabel, "Path: /home/clips/Old.divx");
    ChooseReferenceFile(state, "/home/clips/Good.mp4");
    EXPECT_EQ(state.g_strReferencePath, "/home/clips/Good.mp4");
    EXPECT_EQ(state.g_strReferenceName, "Good.mp4");
    EXPECT_EQ(state.g_strCheckedPath, "/home/clips/Good.mp4");
    EXPECT_EQ(state.g_strReferenceLabel, "Healthy File: /home/clips/Good.mp4");
}

}  // namespace
}  // namespace clipfix
