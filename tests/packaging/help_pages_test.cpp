#include <filesystem>
#include <gtest/gtest.h>
#include <regex>
#include <set>
#include <string>
#include <vector>

#include "support/temp_folder.h"
#include "text/help_page.h"
#include "text/profile_file.h"
#include "text/texts.h"

namespace clipfix {
namespace {

namespace fs = std::filesystem;

const fs::path kHelpFolder = fs::path(CLIPFIX_SOURCE_FOLDER) / "docs/help";

std::string TextOf(const fs::path& file) {
    const ByteVector bytes = test::ReadFile(file);
    return {bytes.begin(), bytes.end()};
}

// All that the expression's one group matches in the text.
std::vector<std::string> All(const std::string& text, const std::string& expression) {
    const std::regex pattern(expression);
    std::vector<std::string> found;
    for (auto match = std::sregex_iterator(text.begin(), text.end(), pattern);
         match != std::sregex_iterator(); ++match) {
        found.push_back((*match)[1]);
    }
    return found;
}

class HelpPages : public ::testing::TestWithParam<std::string> {
  protected:
    [[nodiscard]] std::string Page() const { return TextOf(kHelpFolder / HelpPageOf(GetParam())); }
    [[nodiscard]] std::string Text(const char* key) const {
        return ReadProfileText(fs::path(CLIPFIX_SOURCE_FOLDER) / "Lang" / (GetParam() + ".ini"),
                               kTextSection, key, kMessageTextSize);
    }
};

TEST_P(HelpPages, HaveTheSameSectionsInTheSameOrder) {
    const std::vector<std::string> expected{
        "what-it-does", "steps", "healthy-video", "kept-and-lost", "save", "if-it-fails", "player"};
    EXPECT_EQ(All(Page(), "<h2 id=\"([^\"]*)\">"), expected);
    EXPECT_EQ(All(Page(), "<li><a href=\"#([^\"]*)\">"), expected);
}

TEST_P(HelpPages, CallTheButtonsByTheirLabels) {
    for (const char* key :
         {"IDS_ADD_FILE", "IDS_REPAIR", "IDS_CHOOSE_REFERENCE_MOV_FILE", "IDS_PAUSE", "IDS_RESUME",
          "IDS_CANCEL", "IDS_PREVIEW", "IDS_SAVE", "IDS_HOME"}) {
        EXPECT_NE(Page().find("<b>" + Text(key) + "</b>"), std::string::npos) << key;
    }
}

TEST_P(HelpPages, AreReachedFromTheLinkOfTheirLanguage) {
    EXPECT_EQ(Text("IDS_WHY_HEALTHY_URL"), HelpPageOf(GetParam()) + "#healthy-video");
}

TEST_P(HelpPages, LeadOnlyToPagesAndPlacesThatAreThere) {
    const std::string page = Page();
    for (const std::string& link : All(page, "href=\"([^\"]*)\"")) {
        const std::size_t hash = link.find('#');
        if (hash == 0) {
            EXPECT_NE(page.find("id=\"" + link.substr(1) + "\""), std::string::npos) << link;
        } else {
            EXPECT_TRUE(fs::is_regular_file(kHelpFolder / link.substr(0, hash))) << link;
        }
    }
    EXPECT_EQ(page.find("://"), std::string::npos);
    EXPECT_TRUE(All(page, "(src=|<script|<style|@import)").empty());
}

TEST_P(HelpPages, AreWellFormed) {
    const std::string page = Page();
    EXPECT_EQ(page.rfind("<!DOCTYPE html>\n<html lang=\"", 0), 0U);
    EXPECT_NE(page.find("<meta charset=\"utf-8\"/>"), std::string::npos);
    std::vector<std::string> open;
    const std::regex tag("<(/?)([a-z0-9]+)([^>]*?)(/?)>");
    for (auto match = std::sregex_iterator(page.begin(), page.end(), tag);
         match != std::sregex_iterator(); ++match) {
        const std::string name = (*match)[2];
        if ((*match)[4].length() > 0) {
            continue;
        }
        if ((*match)[1].length() == 0) {
            open.push_back(name);
            continue;
        }
        ASSERT_FALSE(open.empty()) << name;
        EXPECT_EQ(open.back(), name);
        open.pop_back();
    }
    EXPECT_TRUE(open.empty());
    EXPECT_TRUE(All(page, "(&(?!amp;|lt;|gt;|nbsp;))").empty());
}

TEST_P(HelpPages, AreWrittenInTheirOwnLanguage) {
    std::set<std::string> titles;
    for (const char* other : {"English", "French", "German", "Italian", "Portuguese", "Spanish"}) {
        titles.insert(All(TextOf(kHelpFolder / HelpPageOf(other)), "<title>([^<]*)</title>").at(0));
    }
    EXPECT_EQ(titles.size(), 6U);
    const std::string code = All(Page(), "<html lang=\"([a-z]*)\"").at(0);
    const std::string expected =
        GetParam() == "English" ? HelpPageOf("") : "kc-clipfix." + code + ".html";
    EXPECT_EQ(HelpPageOf(GetParam()), expected);
}

INSTANTIATE_TEST_SUITE_P(All, HelpPages,
                         ::testing::Values("English", "French", "German", "Italian", "Portuguese",
                                           "Spanish"),
                         [](const auto& language) { return language.param; });

}  // namespace
}  // namespace clipfix
