#include "text/texts.h"

#include <gtest/gtest.h>

#include "text/scratch_folder.h"

namespace clipfix {
namespace {

constexpr std::uint32_t kGerman = 0x407;
constexpr std::uint32_t kFrenchOfCanada = 0xC0C;

class TextsTest : public ::testing::Test {
  protected:
    void PutLanguage(const std::string& name) const {
        (void)folder_.Put("Lang/" + name + ".ini",
                          "[Kelvo Clipfix Windows]\nIDS_NAME=" + name + "\n");
    }
    void PutSettings(const std::string& lines) const {
        (void)folder_.Put("settings.ini", "[Kelvo Clipfix Windows]\n" + lines);
    }
    // The language in use after a start with the interface language `identifier`.
    [[nodiscard]] std::string Start(std::uint32_t identifier = 0) {
        SystemLanguage system;
        system.userInterfaceIdentifier = identifier;
        texts_.ReadSettings(system);
        return texts_.Text("IDS_NAME");
    }
    [[nodiscard]] std::string Settings() const { return folder_.Get("settings.ini"); }

    ScratchFolder folder_;
    Texts texts_{{folder_ / "settings.ini", folder_ / "Lang"}};
};

TEST_F(TextsTest, ChoosesTheSystemsLanguageAtFirstStartAndWritesItDown) {
    PutLanguage("German");
    EXPECT_EQ(Start(kGerman), "German");
    EXPECT_EQ(Settings(),
              "[Kelvo Clipfix Windows]\nIDS_DEFAULT_LANGUAGE=German\nIDS_LANGUAGE=German\n"
              "IDS_LANGUAGE_ABR=DE\n");
}

TEST_F(TextsTest, AsksTheDefaultLocaleWhenTheInterfaceLanguageIs0) {
    PutLanguage("French");
    SystemLanguage system;
    system.defaultLocaleIdentifier = kFrenchOfCanada;
    system.isoLanguage = "fr";
    system.isoCountry = "CA";
    texts_.ReadSettings(system);
    EXPECT_EQ(texts_.Text("IDS_NAME"), "French");
    EXPECT_EQ(Settings().find("IDS_LOCALE_NAME"), std::string::npos);
}

TEST_F(TextsTest, WritesTheLocalesNameOnMajorVersion6Only) {
    PutLanguage("English");
    SystemLanguage system;
    system.userInterfaceIdentifier = 0x1009;
    system.majorVersion6 = true;
    system.isoLanguage = "en";
    system.isoCountry = "CA";
    texts_.ReadSettings(system);
    EXPECT_EQ(Settings(),
              "[Kelvo Clipfix Windows]\nIDS_LOCALE_NAME=en-CA\nIDS_DEFAULT_LANGUAGE=English\n"
              "IDS_LANGUAGE=English\nIDS_LANGUAGE_ABR=EN\n");
}

TEST_F(TextsTest, KeepsAChosenLanguageWhateverTheSystemSpeaks) {
    PutLanguage("Italian");
    PutSettings("IDS_LANGUAGE=Italian\n");
    EXPECT_EQ(Start(kGerman), "Italian");
    EXPECT_EQ(Settings(), "[Kelvo Clipfix Windows]\nIDS_LANGUAGE=Italian\n");
}

TEST_F(TextsTest, TakesTheDefaultLanguageForAnUnknownOneAndWritesItBack) {
    PutLanguage("German");
    PutSettings(
        "IDS_LANGUAGE=Latin\nIDS_DEFAULT_LANGUAGE=German\nIDS_LANGUAGE_ABR=LA\n"
        "IDS_LANGUAGE_0=english\nIDS_LANGUAGE_ABR_0=EN\n");
    EXPECT_EQ(Start(), "German");
    // The table holds another language, so the old abbreviation stays.
    EXPECT_EQ(Settings(),
              "[Kelvo Clipfix Windows]\nIDS_LANGUAGE=German\nIDS_DEFAULT_LANGUAGE=German\n"
              "IDS_LANGUAGE_ABR=LA\nIDS_LANGUAGE_0=english\nIDS_LANGUAGE_ABR_0=EN\n");
}

TEST_F(TextsTest, TakesTheAbbreviationFromTheTableWhenTheNameMatchesIgnoringCase) {
    PutLanguage("English");
    PutSettings(
        "IDS_LANGUAGE=Latin\nIDS_DEFAULT_LANGUAGE=English\nIDS_LANGUAGE_0=ENGLISH\n"
        "IDS_LANGUAGE_ABR_0=EN\n");
    EXPECT_EQ(Start(), "English");
    EXPECT_EQ(Settings(),
              "[Kelvo Clipfix Windows]\nIDS_LANGUAGE=English\nIDS_DEFAULT_LANGUAGE=English\n"
              "IDS_LANGUAGE_0=ENGLISH\nIDS_LANGUAGE_ABR_0=EN\nIDS_LANGUAGE_ABR=EN\n");
}

TEST_F(TextsTest, LeavesAllTextsEmptyWithoutADefaultLanguageFile) {
    PutSettings("IDS_LANGUAGE=Latin\nIDS_DEFAULT_LANGUAGE=German\n");
    EXPECT_EQ(Start(), "");
    EXPECT_EQ(texts_.Text("IDS_YES"), "");
}

TEST_F(TextsTest, HoldsTheChoiceForThisRunWhenTheSettingsAreReadOnly) {
    PutLanguage("German");
    (void)folder_.Put("settings.ini", "");
    std::filesystem::permissions(folder_ / "settings.ini", std::filesystem::perms::owner_read);
    EXPECT_EQ(Start(kGerman), "German");
    EXPECT_EQ(Settings(), "");
    EXPECT_EQ(texts_.Text("IDS_NAME"), "German");
}

TEST_F(TextsTest, CutsALanguagesNameTo99Characters) {
    PutLanguage(std::string(99, 'x'));
    PutSettings("IDS_LANGUAGE=" + std::string(120, 'x') + "\n");
    EXPECT_EQ(Start(), std::string(99, 'x'));
}

TEST_F(TextsTest, SetsTheLanguageFileByCommandAndWritesANumber) {
    PutLanguage("English");
    PutLanguage("Italian");
    PutSettings("IDS_LANGUAGE=English\nIDS_DEFAULT_LANGUAGE=English\n");
    ASSERT_EQ(Start(), "English");
    EXPECT_TRUE(texts_.ChooseLanguage(40046));
    EXPECT_EQ(texts_.LanguageFile().filename(), "Italian.INI");
    EXPECT_EQ(texts_.Text("IDS_NAME"), "Italian");
    EXPECT_EQ(Settings(),
              "[Kelvo Clipfix Windows]\nIDS_LANGUAGE=3\nIDS_DEFAULT_LANGUAGE=English\n");
    // The same command again finds its own number and does nothing.
    EXPECT_FALSE(texts_.ChooseLanguage(40046));
}

TEST_F(TextsTest, FallsBackToTheDefaultLanguageAtTheNextStartAfterACommand) {
    PutLanguage("English");
    PutLanguage("Italian");
    PutSettings("IDS_LANGUAGE=3\nIDS_DEFAULT_LANGUAGE=English\n");
    EXPECT_EQ(Start(), "English");
    EXPECT_EQ(Settings(),
              "[Kelvo Clipfix Windows]\nIDS_LANGUAGE=English\nIDS_DEFAULT_LANGUAGE=English\n");
}

TEST_F(TextsTest, DoesNothingOnTheEnglishCommandWhileANameStandsInTheSettings) {
    PutLanguage("English");
    PutLanguage("German");
    PutSettings("IDS_LANGUAGE=German\n");
    ASSERT_EQ(Start(), "German");
    EXPECT_FALSE(texts_.ChooseLanguage(40043));
    EXPECT_EQ(texts_.Text("IDS_NAME"), "German");
    // Once a number stands there, the command works.
    PutSettings("IDS_LANGUAGE=2\n");
    EXPECT_TRUE(texts_.ChooseLanguage(40043));
    EXPECT_EQ(texts_.Text("IDS_NAME"), "English");
    EXPECT_EQ(Settings(), "[Kelvo Clipfix Windows]\nIDS_LANGUAGE=0\n");
}

TEST_F(TextsTest, KnowsFiveLanguageCommandsAndNoOther) {
    const std::vector<std::pair<int, std::string>> commands{{40044, "French.INI"},
                                                            {40045, "German.INI"},
                                                            {40046, "Italian.INI"},
                                                            {40047, "Spanish.INI"},
                                                            {40043, "English.INI"}};
    for (const auto& [id, file] : commands) {
        EXPECT_TRUE(texts_.ChooseLanguage(id));
        EXPECT_EQ(texts_.LanguageFile().filename(), file);
    }
    EXPECT_FALSE(texts_.ChooseLanguage(40042));
    EXPECT_FALSE(texts_.ChooseLanguage(40048));
    EXPECT_EQ(texts_.LanguageFile().filename(), "English.INI");
}

TEST_F(TextsTest, GivesEmptyTextsBeforeTheSettingsAreRead) {
    PutLanguage("English");
    EXPECT_EQ(texts_.Text("IDS_NAME"), "");
}

TEST_F(TextsTest, SeesAnEditOfTheLanguageFileAtOnce) {
    PutLanguage("English");
    ASSERT_EQ(Start(), "English");
    (void)folder_.Put("Lang/English.ini", "[Kelvo Clipfix Windows]\nIDS_NAME=Other\n");
    EXPECT_EQ(texts_.Text("IDS_NAME"), "Other");
}

TEST(FindTextPaths, TakesWhatLiesBesideTheExecutable) {
    const ScratchFolder folder;
    (void)folder.Put("bin/Lang/English.ini", "");
    (void)folder.Put("share/Lang/English.ini", "");
    const TextPaths paths = FindTextPaths(folder / "bin", folder / "share", folder / "user");
    EXPECT_EQ(paths.languageFolder, folder / "bin/Lang");
    EXPECT_EQ(paths.settingsFile, folder / "bin/settings.ini");
}

TEST(FindTextPaths, TakesTheSharedLanguagesOfAnInstalledProgram) {
    const ScratchFolder folder;
    (void)folder.Put("bin/kelvo-clipfix", "");
    (void)folder.Put("share/Lang/English.ini", "");
    const TextPaths paths = FindTextPaths(folder / "bin", folder / "share", folder / "user");
    EXPECT_EQ(paths.languageFolder, folder / "share/Lang");
}

TEST(FindTextPaths, KeepsTheSettingsWithTheUserWhereTheProgramsFolderTakesNoFiles) {
    const ScratchFolder folder;
    const TextPaths paths = FindTextPaths(folder / "missing", folder / "share", folder / "user");
    EXPECT_EQ(paths.settingsFile, folder / "user/settings.ini");
    EXPECT_TRUE(std::filesystem::is_directory(folder / "user"));
}

}  // namespace
}  // namespace clipfix
