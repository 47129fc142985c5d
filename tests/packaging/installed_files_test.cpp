#include <filesystem>
#include <gtest/gtest.h>
#include <memory>
#include <string>

#include "support/run_process.h"
#include "support/temp_folder.h"
#include "text/help_page.h"
#include "text/texts.h"

// Installs the whole build, as `cmake --install` does for a user, into a folder of the test's own.

namespace clipfix {
namespace {

namespace fs = std::filesystem;

constexpr bool kHasWindow = CLIPFIX_HAS_WINDOW;

class Installed : public ::testing::Test {
  protected:
    static void SetUpTestSuite() {
        prefix_ = std::make_unique<test::TempFolder>();
        const auto outcome = test::RunProcess(
            {CLIPFIX_CMAKE, "--install", CLIPFIX_BUILD_FOLDER, "--prefix", prefix_->Path()});
        ASSERT_EQ(outcome.status, 0) << outcome.out << outcome.err;
    }
    static void TearDownTestSuite() { prefix_.reset(); }
    static fs::path At(const std::string& name) { return prefix_->Path() / name; }

    static std::unique_ptr<test::TempFolder> prefix_;
};

std::unique_ptr<test::TempFolder> Installed::prefix_;

TEST_F(Installed, CommandLineRuns) {
    const auto outcome = test::RunProcess({At("bin/clipfix"), "--version"});
    EXPECT_EQ(outcome.status, 0);
    EXPECT_NE(outcome.out.find(CLIPFIX_VERSION), std::string::npos);
}

TEST_F(Installed, LanguageFilesAndHelpAreWhereTheProgramsLook) {
    const TextPaths paths =
        FindTextPaths(At("bin"), At("share/kelvo-clipfix"), At("nobody's settings"));
    EXPECT_EQ(paths.languageFolder, At("share/kelvo-clipfix/Lang"));
    for (const char* language :
         {"English", "French", "German", "Italian", "Portuguese", "Spanish"}) {
        EXPECT_TRUE(fs::is_regular_file(paths.languageFolder / (std::string(language) + ".ini")));
        EXPECT_TRUE(fs::is_regular_file(At("share/kelvo-clipfix/help/" + HelpPageOf(language))));
    }
}

TEST_F(Installed, LicencesAreIncluded) {
    EXPECT_TRUE(fs::is_regular_file(At("share/kelvo-clipfix/help/kc-clipfix.css")));
    for (const char* name : {"LICENSE", "licences.md", "README.md"}) {
        EXPECT_TRUE(fs::is_regular_file(At("share/doc/kelvo-clipfix") / name)) << name;
    }
}

TEST_F(Installed, WindowsBringAllThatADesktopLooksFor) {
    if (!kHasWindow) {
        EXPECT_FALSE(fs::exists(At("share/applications")));
        GTEST_SKIP() << "built without the window";
    }
    EXPECT_TRUE(fs::is_regular_file(At("bin/kc-mplayer")));
    EXPECT_TRUE(fs::is_regular_file(At("share/applications/kelvo-clipfix.desktop")));
    EXPECT_TRUE(fs::is_regular_file(At("share/metainfo/local.kelvo.clipfix.metainfo.xml")));
    const fs::path icons = At("share/icons/hicolor");
    EXPECT_TRUE(fs::is_regular_file(icons / "scalable/apps/kelvo-clipfix.svg"));
    for (const char* size : {"16", "22", "24", "32", "48", "64", "96", "128", "256", "512"}) {
        const std::string square = std::string(size) + "x" + size;
        const ByteVector picture = test::ReadFile(icons / square / "apps/kelvo-clipfix.png");
        // PNG, IHDR: width and height.
        EXPECT_EQ(std::to_string(ReadBig32(picture, 16)), size);
        EXPECT_EQ(std::to_string(ReadBig32(picture, 20)), size);
    }
}

}  // namespace
}  // namespace clipfix
