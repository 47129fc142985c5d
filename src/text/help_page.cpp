#include "text/help_page.h"

#include "text/system_language.h"

namespace clipfix {

std::string HelpPageOf(std::string_view language) {
    const std::string_view code = LanguageCodeOf(language);
    return code == kEnglishCode ? std::string(kHelpPage)
                                : "kc-clipfix." + std::string(code) + ".html";
}

}  // namespace clipfix
