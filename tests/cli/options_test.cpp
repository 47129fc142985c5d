#include "cli/options.h"

#include <gtest/gtest.h>
#include <vector>

namespace clipfix::cli {
namespace {

Options Parse(std::vector<const char*> arguments) {
    arguments.insert(arguments.begin(), "clipfix");
    return ParseCommandLine(static_cast<int>(arguments.size()), arguments.data());
}

TEST(CommandLine, ReadsEveryOptionOfRepair) {
    const auto options = Parse(
        {"repair", "bad.mp4", "-r", "good.mp4", "-o", "new.mov", "-f", "--json", "-q", "--trace"});
    const auto* repair = std::get_if<RepairOptions>(&options);
    ASSERT_NE(repair, nullptr);
    EXPECT_EQ(repair->damaged, "bad.mp4");
    EXPECT_EQ(repair->reference, "good.mp4");
    EXPECT_EQ(repair->output, "new.mov");
    EXPECT_TRUE(repair->force);
    EXPECT_TRUE(repair->json);
    EXPECT_TRUE(repair->quiet);
    EXPECT_TRUE(repair->trace);
}

TEST(CommandLine, KnowsTheLongNamesToo) {
    const auto options =
        Parse({"repair", "--reference", "g", "--output", "o", "--force", "--quiet", "d"});
    const auto* repair = std::get_if<RepairOptions>(&options);
    ASSERT_NE(repair, nullptr);
    EXPECT_EQ(repair->damaged, "d");
    EXPECT_EQ(repair->reference, "g");
    EXPECT_EQ(repair->output, "o");
    EXPECT_FALSE(repair->json);
}

TEST(CommandLine, TakesAFileThatBeginsWithADashBehindTwoDashes) {
    const auto options = Parse({"repair", "--", "-odd.avi"});
    const auto* repair = std::get_if<RepairOptions>(&options);
    ASSERT_NE(repair, nullptr);
    EXPECT_EQ(repair->damaged, "-odd.avi");
}

TEST(CommandLine, ReadsTheOtherCommands) {
    const auto check = Parse({"check", "a.mp4", "--json"});
    ASSERT_TRUE(std::holds_alternative<CheckOptions>(check));
    EXPECT_EQ(std::get<CheckOptions>(check).file, "a.mp4");
    EXPECT_TRUE(std::get<CheckOptions>(check).json);
    const auto scan = Parse({"scan", "a.mp4", "-r", "b.mp4"});
    ASSERT_TRUE(std::holds_alternative<ScanOptions>(scan));
    EXPECT_EQ(std::get<ScanOptions>(scan).reference, "b.mp4");
    EXPECT_TRUE(std::holds_alternative<GuiOptions>(Parse({"gui"})));
    EXPECT_EQ(std::get<GuiOptions>(Parse({"gui", "x.avi"})).file, "x.avi");
}

TEST(CommandLine, AnswersHelpAndVersion) {
    const auto version = std::get<Answered>(Parse({"--version"}));
    EXPECT_EQ(version.text, "clipfix " CLIPFIX_VERSION "\n");
    EXPECT_FALSE(version.isError);
    for (const auto& arguments : std::vector<std::vector<const char*>>{
             {"--help"}, {"help"}, {"help", "repair"}, {"repair", "--help"}}) {
        const auto help = std::get<Answered>(Parse(arguments));
        EXPECT_FALSE(help.isError);
        EXPECT_NE(help.text.find("clipfix"), std::string::npos);
    }
    EXPECT_NE(std::get<Answered>(Parse({"help", "repair"})).text.find("--reference"),
              std::string::npos);
    EXPECT_NE(std::get<Answered>(Parse({"--help"})).text.find("130"), std::string::npos);
}

TEST(CommandLine, RefusesWrongUse) {
    for (const auto& arguments :
         std::vector<std::vector<const char*>>{{},
                                               {"repair"},
                                               {"mend", "a.avi"},
                                               {"repair", "a", "b"},
                                               {"repair", "a", "--nonsense"},
                                               {"help", "nothing"},
                                               {"repair", "a", "-o"}}) {
        const auto options = Parse(arguments);
        ASSERT_TRUE(std::holds_alternative<Answered>(options));
        EXPECT_TRUE(std::get<Answered>(options).isError);
        EXPECT_FALSE(std::get<Answered>(options).text.empty());
    }
}

}  // namespace
}  // namespace clipfix::cli
