#include <gtest/gtest.h>
#include <string>

#include "support/run_process.h"

namespace clipfix {
namespace {

const std::string kPackaging = std::string(CLIPFIX_SOURCE_FOLDER) + "/packaging/";

TEST(DesktopEntry, PassesTheDesktopsOwnValidator) {
    const auto outcome =
        test::RunProcess({"desktop-file-validate", kPackaging + "kelvo-clipfix.desktop"});
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.out + outcome.err, "");
}

TEST(SoftwareCentreEntry, PassesItsValidator) {
    const auto outcome = test::RunProcess(
        {"appstreamcli", "validate", "--no-net", kPackaging + "local.kelvo.clipfix.metainfo.xml"});
    EXPECT_EQ(outcome.status, 0) << outcome.out << outcome.err;
}

}  // namespace
}  // namespace clipfix
