#include "player/player_texts.h"

#include <cstdlib>
#include <fstream>
#include <gtest/gtest.h>
#include <set>

#include "support/temp_folder.h"
#include "text/profile_file.h"
#include "text/texts.h"

namespace clipfix {
namespace {

namespace fs = std::filesystem;
using test::TempFolder;

// A program folder with settings and two small language files, on a system that speaks Italian.
class PlayerTextsOf : public ::testing::Test {
  protected:
    PlayerTextsOf() {
        fs::create_directory(folder_ / "Lang");
        Write("Lang/German.ini", "IDS_PLAYER_PLAY=Wiedergabe\n");
        Write("Lang/Italian.ini", "IDS_PLAYER_PLAY=Riproduci\n");
        for (const char* variable : {"LANGUAGE", "LC_ALL", "LC_MESSAGES", "LANG"}) {
            ::setenv(variable, "it_IT.UTF-8", 1);
        }
    }
    void Write(const std::string& name, const std::string& lines) const {
        std::ofstream(folder_ / name) << "[" << kTextSection << "]\n" << lines;
    }
    [[nodiscard]] std::string Word(const PlayerText& text = player_text::kPlay) const {
        return PlayerTexts(folder_.Path(), shared_.Path(), user_.Path()).Word(text).toStdString();
    }

    TempFolder folder_;
    TempFolder shared_;
    TempFolder user_;
};

TEST_F(PlayerTextsOf, TheLanguageInTheSettings) {
    Write("settings.ini", "IDS_LANGUAGE=German\n");
    EXPECT_EQ(Word(), "Wiedergabe");
}

TEST_F(PlayerTextsOf, TheLanguageThatTheMenuWroteAsANumber) {
    Write("settings.ini", "IDS_LANGUAGE=2\n");
    EXPECT_EQ(Word(), "Wiedergabe");
}

TEST_F(PlayerTextsOf, TheSystemsLanguageWithoutSettings) {
    EXPECT_EQ(Word(), "Riproduci");
    EXPECT_FALSE(fs::exists(folder_ / "settings.ini"));
}

TEST_F(PlayerTextsOf, TheSystemsLanguageWhenTheChosenOneHasNoFile) {
    Write("settings.ini", "IDS_LANGUAGE=Klingon\n");
    EXPECT_EQ(Word(), "Riproduci");
}

TEST_F(PlayerTextsOf, AnInstalledProgramLieInTheSharedFolder) {
    fs::create_directory(shared_ / "Lang");
    fs::rename(folder_ / "Lang/German.ini", shared_ / "Lang/German.ini");
    std::ofstream(user_ / "settings.ini") << "[" << kTextSection << "]\nIDS_LANGUAGE=German\n";
    EXPECT_EQ(Word(), "Wiedergabe");
}

TEST_F(PlayerTextsOf, ALanguageFileThatLacksOneAreEnglish) {
    Write("settings.ini", "IDS_LANGUAGE=German\n");
    EXPECT_EQ(Word(player_text::kVolume), "Volume");
}

TEST_F(PlayerTextsOf, NoLanguageFileAreEnglish) {
    fs::remove_all(folder_ / "Lang");
    EXPECT_EQ(Word(), "Play");
    EXPECT_EQ(PlayerTexts().Word(player_text::kPlay).toStdString(), "Play");
}

TEST_F(PlayerTextsOf, ALanguageNeverLeadToAnotherFolder) {
    std::ofstream(user_ / "German.ini") << "[" << kTextSection << "]\nIDS_PLAYER_PLAY=no\n";
    Write("settings.ini", "IDS_LANGUAGE=../../" + user_.Path().filename().string() + "/German\n");
    EXPECT_EQ(Word(), "Riproduci");
}

TEST(PlayerTextKeys, StandInTheShippedEnglishFileAsInTheProgram) {
    const fs::path file = fs::path(CLIPFIX_LANG_FOLDER) / "English.ini";
    std::set<std::string> keys;
    for (const PlayerText& text : player_text::kAll) {
        EXPECT_EQ(ReadProfileText(file, kTextSection, text.key, kMessageTextSize), text.english);
        EXPECT_TRUE(keys.insert(text.key).second) << text.key;
    }
}

}  // namespace
}  // namespace clipfix
