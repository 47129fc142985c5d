#include "text/system_language.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <initializer_list>
#include <utility>

namespace clipfix {
namespace {

struct LocaleRow {
    std::string_view language;
    std::string_view country;
    std::uint32_t identifier;
};

// The first row of a language stands for its unknown countries too. Spanish of Spain has two
// identifiers, by sort order; the modern one stands here.
constexpr std::array kLocales{
    LocaleRow{"en", "US", 0x409},  LocaleRow{"en", "GB", 0x809},  LocaleRow{"fr", "FR", 0x40C},
    LocaleRow{"fr", "BE", 0x80C},  LocaleRow{"fr", "CA", 0xC0C},  LocaleRow{"fr", "CH", 0x100C},
    LocaleRow{"fr", "LU", 0x140C}, LocaleRow{"fr", "MC", 0x180C}, LocaleRow{"de", "DE", 0x407},
    LocaleRow{"de", "CH", 0x807},  LocaleRow{"de", "AT", 0xC07},  LocaleRow{"de", "LU", 0x1007},
    LocaleRow{"de", "LI", 0x1407}, LocaleRow{"it", "IT", 0x410},  LocaleRow{"it", "CH", 0x810},
    LocaleRow{"pt", "BR", 0x416},  LocaleRow{"pt", "PT", 0x816},  LocaleRow{"es", "ES", 0xC0A},
    LocaleRow{"es", "MX", 0x80A},  LocaleRow{"es", "GT", 0x100A}, LocaleRow{"es", "CR", 0x140A},
    LocaleRow{"es", "PA", 0x180A}, LocaleRow{"es", "DO", 0x1C0A}, LocaleRow{"es", "VE", 0x200A},
    LocaleRow{"es", "CO", 0x240A}, LocaleRow{"es", "PE", 0x280A}, LocaleRow{"es", "AR", 0x2C0A},
    LocaleRow{"es", "EC", 0x300A}, LocaleRow{"es", "CL", 0x340A}, LocaleRow{"es", "UY", 0x380A},
    LocaleRow{"es", "PY", 0x3C0A}, LocaleRow{"es", "BO", 0x400A}, LocaleRow{"es", "SV", 0x440A},
    LocaleRow{"es", "HN", 0x480A}, LocaleRow{"es", "NI", 0x4C0A}, LocaleRow{"es", "PR", 0x500A},
    LocaleRow{"es", "US", 0x540A},
};

bool IsOneOf(std::uint32_t identifier, std::initializer_list<std::uint32_t> list) {
    return std::find(list.begin(), list.end(), identifier) != list.end();
}

std::string FirstSet(std::initializer_list<const char*> names) {
    for (const char* name : names) {
        const char* value = std::getenv(name);  // NOLINT(concurrency-mt-unsafe)
        if (value != nullptr && *value != '\0') {
            return value;
        }
    }
    return {};
}

}  // namespace

LanguageName LanguageOfIdentifier(std::uint32_t identifier) {
    // The lists are settled, gaps included: French of Monaco (0x180C) counts as English.
    if (IsOneOf(identifier, {0x40C, 0x80C, 0xC0C, 0x100C, 0x140C})) {
        return {"French", "FR"};
    }
    if (IsOneOf(identifier, {0x407, 0x807, 0xC07, 0x1007, 0x1407})) {
        return {"German", "DE"};
    }
    if (IsOneOf(identifier, {0x410, 0x810})) {
        return {"Italian", "IT"};
    }
    if (IsOneOf(identifier, {0x416, 0x816})) {
        return {"Portuguese", "PT"};
    }
    if (identifier >= 0x40A && identifier <= 0x500A && (identifier - 0x40A) % 0x400 == 0) {
        return {"Spanish", "ES"};
    }
    return {"English", "EN"};
}

std::string_view LanguageCodeOf(std::string_view language) {
    constexpr std::array<std::pair<std::string_view, std::string_view>, 5> kCodes{
        {{"French", "fr"},
         {"German", "de"},
         {"Italian", "it"},
         {"Portuguese", "pt"},
         {"Spanish", "es"}}};
    const auto* found = std::find_if(kCodes.begin(), kCodes.end(),
                                     [&](const auto& row) { return row.first == language; });
    return found == kCodes.end() ? kEnglishCode : found->second;
}

std::uint32_t IdentifierOfLocaleName(std::string_view name) {
    name = name.substr(0, name.find_first_of(".@:"));
    const std::size_t separator = name.find_first_of("_-");
    const std::string_view language = name.substr(0, separator);
    const std::string_view country =
        separator == std::string_view::npos ? std::string_view() : name.substr(separator + 1);
    std::uint32_t found = 0;
    for (const LocaleRow& row : kLocales) {
        if (row.language != language) {
            continue;
        }
        if (found == 0 || row.country == country) {
            found = row.identifier;
        }
    }
    return found;
}

SystemLanguage ReadSystemLanguage() {
    SystemLanguage system;
    system.userInterfaceIdentifier =
        IdentifierOfLocaleName(FirstSet({"LANGUAGE", "LC_ALL", "LC_MESSAGES", "LANG"}));
    const std::string locale = FirstSet({"LC_ALL", "LC_CTYPE", "LANG"});
    system.defaultLocaleIdentifier = IdentifierOfLocaleName(locale);
    const std::string stem = locale.substr(0, locale.find_first_of(".@"));
    const std::size_t separator = stem.find('_');
    system.isoLanguage = stem.substr(0, separator);
    system.isoCountry = separator == std::string::npos ? std::string() : stem.substr(separator + 1);
    return system;
}

}  // namespace clipfix
