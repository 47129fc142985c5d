#include "text/system_language.h"

#include <gtest/gtest.h>

namespace clipfix {
namespace {

std::string NameOf(std::uint32_t identifier) {
    return std::string(LanguageOfIdentifier(identifier).name);
}

TEST(SystemLanguage, KnowsTheIdentifiersOfTheFiveLanguages) {
    for (const std::uint32_t id : {0x40CU, 0x80CU, 0xC0CU, 0x100CU, 0x140CU}) {
        EXPECT_EQ(NameOf(id), "French");
        EXPECT_EQ(LanguageOfIdentifier(id).abbreviation, "FR");
    }
    for (const std::uint32_t id : {0x407U, 0x807U, 0xC07U, 0x1007U, 0x1407U}) {
        EXPECT_EQ(NameOf(id), "German");
        EXPECT_EQ(LanguageOfIdentifier(id).abbreviation, "DE");
    }
    for (const std::uint32_t id : {0x410U, 0x810U}) {
        EXPECT_EQ(NameOf(id), "Italian");
        EXPECT_EQ(LanguageOfIdentifier(id).abbreviation, "IT");
    }
    for (const std::uint32_t id : {0x416U, 0x816U}) {
        EXPECT_EQ(NameOf(id), "Portuguese");
        EXPECT_EQ(LanguageOfIdentifier(id).abbreviation, "PT");
    }
}

TEST(SystemLanguage, KnowsSpanishFrom0x40ATo0x500AInStepsOf0x400) {
    int count = 0;
    for (std::uint32_t id = 0; id <= 0xFFFF; ++id) {
        count += NameOf(id) == "Spanish" ? 1 : 0;
    }
    EXPECT_EQ(count, 20);
    EXPECT_EQ(NameOf(0x40A), "Spanish");
    EXPECT_EQ(NameOf(0x500A), "Spanish");
    EXPECT_EQ(NameOf(0x540A), "English");
    EXPECT_EQ(NameOf(0x00A), "English");
    EXPECT_EQ(LanguageOfIdentifier(0x80A).abbreviation, "ES");
}

TEST(SystemLanguage, TakesAllOthersAsEnglish) {
    for (const std::uint32_t id : {0U, 0x409U, 0x809U, 0x411U, 0x1807U, 0xC10U}) {
        EXPECT_EQ(NameOf(id), "English");
        EXPECT_EQ(LanguageOfIdentifier(id).abbreviation, "EN");
    }
}

TEST(SystemLanguage, LeavesFrenchOfMonacoToEnglish) {
    EXPECT_EQ(NameOf(0x180C), "English");
}

TEST(SystemLanguage, FindsTheIdentifierOfALocaleName) {
    EXPECT_EQ(IdentifierOfLocaleName("de_AT.UTF-8"), 0xC07U);
    EXPECT_EQ(IdentifierOfLocaleName("de_DE@euro"), 0x407U);
    EXPECT_EQ(IdentifierOfLocaleName("pt-PT"), 0x816U);
    EXPECT_EQ(IdentifierOfLocaleName("fr_CA:en"), 0xC0CU);
    EXPECT_EQ(IdentifierOfLocaleName("it"), 0x410U);
    EXPECT_EQ(IdentifierOfLocaleName("fr_DZ"), 0x40CU);
    EXPECT_EQ(IdentifierOfLocaleName("es_US"), 0x540AU);
    EXPECT_EQ(IdentifierOfLocaleName("C"), 0U);
    EXPECT_EQ(IdentifierOfLocaleName("C.UTF-8"), 0U);
    EXPECT_EQ(IdentifierOfLocaleName("POSIX"), 0U);
    EXPECT_EQ(IdentifierOfLocaleName(""), 0U);
    EXPECT_EQ(IdentifierOfLocaleName("ja_JP"), 0U);
}

TEST(SystemLanguage, HasTheCodesOfTheLanguageFiles) {
    EXPECT_EQ(LanguageCodeOf("German"), "de");
    EXPECT_EQ(LanguageCodeOf("Portuguese"), "pt");
    EXPECT_EQ(LanguageCodeOf("English"), "en");
    EXPECT_EQ(LanguageCodeOf("Klingon"), "en");
}

}  // namespace
}  // namespace clipfix
