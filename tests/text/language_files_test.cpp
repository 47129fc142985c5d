#include <algorithm>
#include <array>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <set>
#include <sstream>
#include <string>

#include "text/profile_file.h"
#include "text/texts.h"

namespace clipfix {
namespace {

// Every key that the program looks up, blanks at its end included.
constexpr std::array kKeys{"IDS_ABOUT",
                           "IDS_ADD_FILE",
                           "IDS_AVIERROR1",
                           "IDS_AVIERROR2",
                           "IDS_AVIERROR3",
                           "IDS_AVIERROR5",
                           "IDS_AVIERROR7",
                           "IDS_BACK",
                           "IDS_CANCEL",
                           "IDS_CANCEL_DLG_MSG ",
                           "IDS_CHOOSE_REFERENCE_MOV_FILE",
                           "IDS_CLICK_ADD",
                           "IDS_CLICK_HERE",
                           "IDS_CLICK_HERE_1",
                           "IDS_CLICK_HERE_2",
                           "IDS_CLOSE_DLG_MSG ",
                           "IDS_CODEC",
                           "IDS_CONFIRMATION",
                           "IDS_DESTINATION",
                           "IDS_DURATION",
                           "IDS_ELAPSED_TIME",
                           "IDS_ERROR",
                           "IDS_ERROR9",
                           "IDS_ERROR10",
                           "IDS_FILE_NAME",
                           "IDS_FILE_SELECTED",
                           "IDS_HOME",
                           "IDS_INFORMATION",
                           "IDS_MOVERROR1",
                           "IDS_MOVERROR2",
                           "IDS_MOVERROR3",
                           "IDS_MOVERROR4",
                           "IDS_NO",
                           "IDS_OK",
                           "IDS_YES",
                           "IDS_PAUSE",
                           "IDS_RESUME",
                           "IDS_PLEASE_WAIT",
                           "IDS_PLEASE_WAIT_ANALYSING",
                           "IDS_PLEASE_WAIT_SAVING",
                           "IDS_PREVIEW",
                           "IDS_REPAIR",
                           "IDS_REPAIRED_DETAILS",
                           "IDS_REPAIRING_VIDEO",
                           "IDS_REPAIR_ABORTED",
                           "IDS_REPAIR_PROCESSING",
                           "IDS_RUNNING3",
                           "IDS_SAVE",
                           "IDS_SAVE_ABORTED",
                           "IDS_SAVE_ABORTED  ",
                           "IDS_SAVE_COMPLETED",
                           "IDS_SAVE_PROCESSING",
                           "IDS_SAVING_VIDEO",
                           "IDS_SELECT_REFERENCE",
                           "IDS_SELECT_REFERNCE_HEADER",
                           "IDS_SELECT_VIDEO",
                           "IDS_SHARE",
                           "IDS_SIZE",
                           "IDS_START_TIME",
                           "IDS_TRACK",
                           "IDS_UNHEALTHY_1",
                           "IDS_US_PER_FRAME",
                           "IDS_VERSION_TEXT",
                           "IDS_WHY_HEALTHY",
                           "IDS_WHY_HEALTHY_URL",
                           "IDS_WORD5",
                           "IDS_WORD8",
                           "IDS_MENU",
                           "IDS_MENU_LANGUAGE",
                           "IDS_MENU_UPDATE",
                           "IDS_HELP",
                           "IDS_SUPPORT",
                           "IDS_MENU_ABOUT",
                           "IDS_MINIMIZE",
                           "IDS_MAXIMIZE",
                           "IDS_RESTORE",
                           "IDS_CLOSE",
                           "IDS_PROGRESS",
                           "IDS_BUSY",
                           "IDS_ABOUT_PURPOSE",
                           "IDS_ABOUT_LICENCE",
                           "IDS_ABOUT_COMPONENTS",
                           "IDS_PLAYER_PLAY",
                           "IDS_PLAYER_PAUSE",
                           "IDS_PLAYER_PLAY_AGAIN",
                           "IDS_PLAYER_BACKWARD",
                           "IDS_PLAYER_FORWARD",
                           "IDS_PLAYER_POSITION",
                           "IDS_PLAYER_VOLUME",
                           "IDS_PLAYER_SOUND_OFF",
                           "IDS_PLAYER_SOUND_ON",
                           "IDS_PLAYER_FULL_SCREEN",
                           "IDS_PLAYER_LEAVE_FULL_SCREEN",
                           "IDS_PLAYER_OPENING",
                           "IDS_PLAYER_SOUND_ONLY",
                           "IDS_PLAYER_CANNOT_PLAY",
                           "IDS_PLAYER_NO_FILE",
                           "IDS_PLAYER_NOT_FOUND",
                           "IDS_PLAYER_NO_ACCESS",
                           "IDS_PLAYER_NOT_A_FILE",
                           "IDS_PLAYER_EMPTY",
                           "IDS_PLAYER_NOT_A_VIDEO",
                           "IDS_PLAYER_NO_PICTURE",
                           "IDS_PLAYER_NO_ENGINE"};

// The texts that turn a note of the message window into its form with a link.
constexpr std::array kLinkFormKeys{"IDS_UNHEALTHY_1", "IDS_MOVERROR1", "IDS_MOVERROR2",
                                   "IDS_MOVERROR3",   "IDS_MOVERROR4", "IDS_AVIERROR1",
                                   "IDS_AVIERROR2",   "IDS_AVIERROR3", "IDS_AVIERROR5"};
constexpr std::array kOrdinaryNotes{"IDS_REPAIR_ABORTED",  "IDS_REPAIR_PROCESSING",
                                    "IDS_SAVE_ABORTED",    "IDS_SAVE_COMPLETED",
                                    "IDS_SAVE_PROCESSING", "IDS_ERROR9",
                                    "IDS_CLOSE_DLG_MSG ",  "IDS_CANCEL_DLG_MSG "};

class LanguageFiles : public ::testing::TestWithParam<std::string> {
  protected:
    [[nodiscard]] std::filesystem::path File() const {
        return std::filesystem::path(CLIPFIX_LANG_FOLDER) / (GetParam() + ".ini");
    }
    [[nodiscard]] std::string Text(std::string_view key) const {
        return ReadProfileText(File(), kTextSection, key, kMessageTextSize);
    }
    [[nodiscard]] std::string Whole() const {
        std::ifstream stream(File(), std::ios::binary);
        return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
    }
};

TEST_P(LanguageFiles, HoldATextForEveryKey) {
    for (const char* key : kKeys) {
        EXPECT_FALSE(Text(key).empty()) << key;
    }
}

TEST_P(LanguageFiles, HoldNoKeyTwiceAndNoneThatNobodyLooksUp) {
    std::set<std::string> wanted;
    for (std::string key : kKeys) {
        wanted.insert(key.substr(0, key.find_last_not_of(' ') + 1));
    }
    std::multiset<std::string> found;
    std::istringstream lines(Whole());
    for (std::string line; std::getline(lines, line);) {
        if (line.rfind("IDS_", 0) == 0) {
            found.insert(line.substr(0, line.find('=')));
        }
    }
    EXPECT_EQ(found, std::multiset<std::string>(wanted.begin(), wanted.end()));
}

TEST_P(LanguageFiles, FitTheBuffers) {
    for (const char* key : kKeys) {
        EXPECT_EQ(ReadProfileText(File(), kTextSection, key, 1U << 20U), Text(key)) << key;
    }
    for (const char* title : {"IDS_INFORMATION", "IDS_CONFIRMATION", "IDS_ERROR", "IDS_RUNNING3",
                              "IDS_ABOUT", "IDS_SELECT_VIDEO", "IDS_SELECT_REFERNCE_HEADER"}) {
        EXPECT_EQ(ReadProfileText(File(), kTextSection, title, kTitleTextSize), Text(title));
    }
}

TEST_P(LanguageFiles, KeepOrdinaryNotesApartFromTheTextsOfTheLinkForm) {
    for (const char* error : kLinkFormKeys) {
        for (const char* note : kOrdinaryNotes) {
            EXPECT_NE(Text(error), Text(note)) << error << " and " << note;
        }
    }
}

TEST_P(LanguageFiles, NameTheButtonsByTheirLabels) {
    EXPECT_NE(Text("IDS_CLICK_ADD").find(Text("IDS_ADD_FILE")), std::string::npos);
    EXPECT_NE(Text("IDS_FILE_SELECTED").find(Text("IDS_REPAIR")), std::string::npos);
}

TEST_P(LanguageFiles, HoldNoTabOrDoubleBlankAndNoStraySign) {
    for (const char* key : kKeys) {
        const std::string text = Text(key);
        EXPECT_EQ(text.find_first_of("\t%\\\r\n"), std::string::npos) << key;
        EXPECT_EQ(text.find("  "), std::string::npos) << key;
    }
}

INSTANTIATE_TEST_SUITE_P(All, LanguageFiles,
                         ::testing::Values("English", "French", "German", "Italian", "Portuguese",
                                           "Spanish"),
                         [](const auto& language) { return language.param; });

}  // namespace
}  // namespace clipfix
