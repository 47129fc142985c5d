#include "text/help_page.h"

#include <gtest/gtest.h>

namespace clipfix {
namespace {

TEST(HelpPageOf, IsTheOneOfTheLanguage) {
    EXPECT_EQ(HelpPageOf("German"), "kc-clipfix.de.html");
    EXPECT_EQ(HelpPageOf("Portuguese"), "kc-clipfix.pt.html");
    EXPECT_EQ(HelpPageOf("English"), "kc-clipfix.html");
    EXPECT_EQ(HelpPageOf("Klingon"), "kc-clipfix.html");
    EXPECT_EQ(HelpPageOf(""), "kc-clipfix.html");
}

}  // namespace
}  // namespace clipfix
