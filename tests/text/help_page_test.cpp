#include "text/help_page.h"

#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>

#include "support/temp_folder.h"

namespace clipfix {
namespace {

namespace fs = std::filesystem;

TEST(HelpPageOf, IsTheOneOfTheLanguage) {
    EXPECT_EQ(HelpPageOf("German"), "kc-clipfix.de.html");
    EXPECT_EQ(HelpPageOf("Portuguese"), "kc-clipfix.pt.html");
    EXPECT_EQ(HelpPageOf("English"), "kc-clipfix.html");
    EXPECT_EQ(HelpPageOf("Klingon"), "kc-clipfix.html");
    EXPECT_EQ(HelpPageOf(""), "kc-clipfix.html");
}

TEST(FindHelpPage, LooksBesideTheProgramFirstAndThenInTheInstalledDocumentation) {
    const test::TempFolder prefix;
    const fs::path programs = prefix / "bin";
    const fs::path documents = prefix / "share/doc/kelvo-clipfix";
    fs::create_directories(programs);
    fs::create_directories(documents);
    EXPECT_EQ(FindHelpPage(programs, "kc-clipfix.html"), "");
    std::ofstream(documents / "kc-clipfix.html") << "x";
    EXPECT_EQ(FindHelpPage(programs, "kc-clipfix.html#save"), documents / "kc-clipfix.html");
    std::ofstream(programs / "kc-clipfix.html") << "x";
    EXPECT_EQ(FindHelpPage(programs, "kc-clipfix.html"), programs / "kc-clipfix.html");
}

TEST(FindHelpPage, FindsNothingElsewhere) {
    const test::TempFolder prefix;
    fs::create_directories(prefix / "bin");
    std::ofstream(prefix / "secret.html") << "x";
    EXPECT_EQ(FindHelpPage(prefix / "bin", "../secret.html"), "");
    EXPECT_EQ(FindHelpPage(prefix / "bin", (prefix / "secret.html").string()), "");
    EXPECT_EQ(FindHelpPage(prefix / "bin", ""), "");
    EXPECT_EQ(FindHelpPage(prefix / "bin", "#save"), "");
    EXPECT_EQ(FindHelpPage(prefix / "bin", "."), "");
}

}  // namespace
}  // namespace clipfix
