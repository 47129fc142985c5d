#include "text/profile_file.h"

#include <gtest/gtest.h>

#include "text/scratch_folder.h"

namespace clipfix {
namespace {

constexpr std::string_view kSection = "Kelvo Clipfix Windows";

class ProfileFile : public ::testing::Test {
  protected:
    [[nodiscard]] std::string Read(std::string_view text, std::string_view key,
                                   std::size_t size = 1000) const {
        return ReadProfileText(folder_.Put("a.ini", text), kSection, key, size);
    }
    // What stands in the file after a write to one that held `text`.
    [[nodiscard]] std::string Written(std::string_view text, std::string_view key,
                                      std::string_view value) const {
        EXPECT_TRUE(WriteProfileText(folder_.Put("a.ini", text), kSection, key, value));
        return folder_.Get("a.ini");
    }

    ScratchFolder folder_;
};

TEST_F(ProfileFile, FindsTheValueOfAKeyInItsSection) {
    EXPECT_EQ(Read("[Kelvo Clipfix Windows]\nIDS_YES=Yes\n", "IDS_YES"), "Yes");
    EXPECT_EQ(Read("[Kelvo Clipfix Windows]\nIDS_YES=Yes", "IDS_YES"), "Yes");
    EXPECT_EQ(Read("[Other]\nIDS_YES=No\n[Kelvo Clipfix Windows]\nIDS_YES=Yes\n", "IDS_YES"),
              "Yes");
    EXPECT_EQ(Read("[Kelvo Clipfix Windows]\n[Other]\nIDS_YES=No\n", "IDS_YES"), "");
    EXPECT_EQ(Read("IDS_YES=Yes\n", "IDS_YES"), "");
}

TEST_F(ProfileFile, LooksAtKeysAndSectionsWithoutRegardToCase) {
    EXPECT_EQ(Read("[KELVO clipfix WINDOWS]\nids_Yes=Yes\n", "IDS_YES"), "Yes");
}

TEST_F(ProfileFile, CutsBlanksAroundKeysAndValues) {
    EXPECT_EQ(Read("  [ Kelvo Clipfix Windows ]\r\n\tIDS_YES \t=  Yes please \t\r\n", "IDS_YES"),
              "Yes please");
}

TEST_F(ProfileFile, FindsKeysThatEndInBlanks) {
    EXPECT_EQ(Read("[Kelvo Clipfix Windows]\nIDS_CLOSE_DLG_MSG=Quit?\n", "IDS_CLOSE_DLG_MSG "),
              "Quit?");
    EXPECT_EQ(Read("[Kelvo Clipfix Windows]\nIDS_SAVE_ABORTED  =Gone\n", "IDS_SAVE_ABORTED  "),
              "Gone");
    EXPECT_EQ(Read("[Kelvo Clipfix Windows]\nIDS_SAVE_ABORTED  =Gone\n", "IDS_SAVE_ABORTED"),
              "Gone");
}

TEST_F(ProfileFile, TakesTheFirstOfTwoKeysAndOfTwoSections) {
    EXPECT_EQ(Read("[Kelvo Clipfix Windows]\nK=1\nK=2\n", "K"), "1");
    EXPECT_EQ(Read("[Kelvo Clipfix Windows]\nA=1\n[Kelvo Clipfix Windows]\nK=2\n", "K"), "");
}

TEST_F(ProfileFile, ReadsUtf8WithAndWithoutAMark) {
    EXPECT_EQ(Read("[Kelvo Clipfix Windows]\nK=Größe\n", "K"), "Größe");
    EXPECT_EQ(Read("\xEF\xBB\xBF[Kelvo Clipfix Windows]\nK=Größe\n", "K"), "Größe");
}

TEST_F(ProfileFile, DropsOnePairOfQuotationMarksAroundTheWholeValue) {
    EXPECT_EQ(Read("[Kelvo Clipfix Windows]\nK=\" a \"\n", "K"), " a ");
    EXPECT_EQ(Read("[Kelvo Clipfix Windows]\nK='a'\n", "K"), "a");
    EXPECT_EQ(Read("[Kelvo Clipfix Windows]\nK=\"\"a\"\"\n", "K"), "\"a\"");
    EXPECT_EQ(Read("[Kelvo Clipfix Windows]\nK=\"a'\n", "K"), "\"a'");
    EXPECT_EQ(Read("[Kelvo Clipfix Windows]\nK=Say \"a\" now\n", "K"), "Say \"a\" now");
    EXPECT_EQ(Read("[Kelvo Clipfix Windows]\nK=\"\n", "K"), "\"");
}

TEST_F(ProfileFile, PassesOverRemarksAndBrokenLines) {
    EXPECT_EQ(Read("[Kelvo Clipfix Windows]\n;K=1\n  ; K=2\nnonsense\n[open\n=x\nK=a=b;c\n", "K"),
              "a=b;c");
}

TEST_F(ProfileFile, GivesAnEmptyTextForWhatIsMissing) {
    EXPECT_EQ(Read("[Kelvo Clipfix Windows]\nK=\n", "K"), "");
    EXPECT_EQ(Read("[Kelvo Clipfix Windows]\nKK=1\n", "K"), "");
    EXPECT_EQ(Read("", "K"), "");
    EXPECT_EQ(ReadProfileText(folder_ / "none.ini", kSection, "K", 1000), "");
    EXPECT_EQ(ReadProfileText(folder_.Path(), kSection, "K", 1000), "");
}

TEST_F(ProfileFile, CutsAValueToTheBufferLessItsClosingZero) {
    const std::string text = "[Kelvo Clipfix Windows]\nK=abcdef\n";
    EXPECT_EQ(Read(text, "K", 7), "abcdef");
    EXPECT_EQ(Read(text, "K", 6), "abcde");
    EXPECT_EQ(Read(text, "K", 1), "");
    EXPECT_EQ(Read(text, "K", 0), "");
}

TEST_F(ProfileFile, CountsUtf16UnitsAndNeverCutsInsideACharacter) {
    EXPECT_EQ(CutToUtf16Units("äöü", 2), "äö");
    EXPECT_EQ(CutToUtf16Units("a\xF0\x9F\x8E\xAC"
                              "b",
                              2),
              "a");  // the clapper board takes two units
    EXPECT_EQ(CutToUtf16Units("a\xF0\x9F\x8E\xAC"
                              "b",
                              3),
              "a\xF0\x9F\x8E\xAC");
    EXPECT_EQ(CutToUtf16Units("\xFF\xC3", 1), "\xFF");
    EXPECT_EQ(CutToUtf16Units("\xFF\xC3", 9), "\xFF\xC3");
}

TEST_F(ProfileFile, FindsTheFileWithoutRegardToTheCaseOfItsName) {
    (void)folder_.Put("English.ini", "[Kelvo Clipfix Windows]\nK=1\n");
    EXPECT_EQ(ReadProfileText(folder_ / "English.INI", kSection, "K", 10), "1");
    EXPECT_EQ(ReadProfileText(folder_ / "english.ini", kSection, "K", 10), "1");
    EXPECT_TRUE(ProfileFileOpens(folder_ / "ENGLISH.INI"));
    EXPECT_FALSE(ProfileFileOpens(folder_ / "French.ini"));
    EXPECT_FALSE(ProfileFileOpens(folder_.Path()));
}

TEST_F(ProfileFile, ReadsTheFileAnewEachTime) {
    EXPECT_EQ(Read("[Kelvo Clipfix Windows]\nK=1\n", "K"), "1");
    EXPECT_EQ(Read("[Kelvo Clipfix Windows]\nK=2\n", "K"), "2");
}

TEST_F(ProfileFile, MakesTheFileAndTheSectionWhenItWrites) {
    EXPECT_TRUE(WriteProfileText(folder_ / "new.ini", kSection, "K", "1"));
    EXPECT_EQ(folder_.Get("new.ini"), "[Kelvo Clipfix Windows]\nK=1\n");
    EXPECT_EQ(Written("[Other]\nK=9", "K", "1"), "[Other]\nK=9\n[Kelvo Clipfix Windows]\nK=1\n");
}

TEST_F(ProfileFile, ReplacesAValueAndKeepsAllOtherLines) {
    EXPECT_EQ(
        Written("; note\n[Kelvo Clipfix Windows]\nA=1\nk = old\nB=2\n[Other]\nK=3\n", "K", "new"),
        "; note\n[Kelvo Clipfix Windows]\nA=1\nK=new\nB=2\n[Other]\nK=3\n");
}

TEST_F(ProfileFile, AddsAKeyAtTheEndOfItsSection) {
    EXPECT_EQ(Written("[Kelvo Clipfix Windows]\nA=1\n\n[Other]\nK=3\n", "K", "1"),
              "[Kelvo Clipfix Windows]\nA=1\nK=1\n\n[Other]\nK=3\n");
    EXPECT_EQ(Written("[Kelvo Clipfix Windows]\nA=1", "K", "1"),
              "[Kelvo Clipfix Windows]\nA=1\nK=1\n");
    EXPECT_EQ(Written("[Kelvo Clipfix Windows]", "K", "1"), "[Kelvo Clipfix Windows]\nK=1\n");
}

TEST_F(ProfileFile, KeepsTheMarkAndTheLineEnds) {
    EXPECT_EQ(Written("\xEF\xBB\xBF[Kelvo Clipfix Windows]\r\nK=1\r\nL=2\r\n", "K", "x"),
              "\xEF\xBB\xBF[Kelvo Clipfix Windows]\r\nK=x\r\nL=2\r\n");
}

TEST_F(ProfileFile, RefusesToWriteAReadOnlyFile) {
    const auto file = folder_.Put("a.ini", "[Kelvo Clipfix Windows]\nK=1\n");
    using std::filesystem::perms;
    std::filesystem::permissions(file, perms::owner_read);
    EXPECT_FALSE(WriteProfileText(file, kSection, "K", "2"));
    EXPECT_EQ(folder_.Get("a.ini"), "[Kelvo Clipfix Windows]\nK=1\n");
    std::filesystem::permissions(file, perms::owner_read | perms::owner_write);
    EXPECT_TRUE(WriteProfileText(file, kSection, "K", "2"));
    EXPECT_EQ(folder_.Get("a.ini"), "[Kelvo Clipfix Windows]\nK=2\n");
}

TEST_F(ProfileFile, RefusesToWriteWhereNoFileCanBe) {
    EXPECT_FALSE(WriteProfileText(folder_.Path(), kSection, "K", "1"));
    EXPECT_FALSE(WriteProfileText(folder_ / "missing/a.ini", kSection, "K", "1"));
}

}  // namespace
}  // namespace clipfix
