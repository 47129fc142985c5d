#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace clipfix {

// A language as the settings name it.
struct LanguageName {
    std::string_view name;          // "French", also the stem of the language file
    std::string_view abbreviation;  // "FR"
};

// The default language for a Windows language identifier (primary language in the low 10 bits,
// country variant above them).
[[nodiscard]] LanguageName LanguageOfIdentifier(std::uint32_t identifier);

inline constexpr std::string_view kEnglishCode = "en";

// The two-letter code of a language by the name of its file, "de" for "German", as the help and the
// toolkit's own texts are named; that of English for a language that the program does not know.
[[nodiscard]] std::string_view LanguageCodeOf(std::string_view language);

// The language identifier of a POSIX locale name such as "de_AT.UTF-8" or "pt". A country that the
// identifiers do not know counts as the language's first one; a language outside the table of
// LanguageOfIdentifier and the names "C" and "POSIX" give 0.
[[nodiscard]] std::uint32_t IdentifierOfLocaleName(std::string_view name);

// What start-up asks the system for when no language has been chosen yet.
struct SystemLanguage {
    std::uint32_t userInterfaceIdentifier = 0;  // 0: the system does not tell
    std::uint32_t defaultLocaleIdentifier = 0;  // taken when the first is 0
    bool majorVersion6 = false;  // the system's major version is exactly 6; never on Linux
    std::string isoLanguage;     // "fr", used with the next one only on major version 6
    std::string isoCountry;      // "CA"
};

// Reads the environment: LANGUAGE, LC_ALL, LC_MESSAGES and LANG for the interface, LC_ALL, LC_CTYPE
// and LANG for the locale, the first that is set and not empty.
[[nodiscard]] SystemLanguage ReadSystemLanguage();

}  // namespace clipfix
