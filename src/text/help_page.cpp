#include "text/help_page.h"

#include <algorithm>
#include <array>
#include <utility>

namespace clipfix {

namespace {

using LanguageAndPage = std::pair<std::string_view, std::string_view>;

constexpr std::array<LanguageAndPage, 5> kOtherPages{{{"French", "kc-clipfix.fr.html"},
                                                      {"German", "kc-clipfix.de.html"},
                                                      {"Italian", "kc-clipfix.it.html"},
                                                      {"Portuguese", "kc-clipfix.pt.html"},
                                                      {"Spanish", "kc-clipfix.es.html"}}};

}  // namespace

std::string HelpPageOf(std::string_view language) {
    const auto* found =
        std::find_if(kOtherPages.begin(), kOtherPages.end(),
                     [&](const LanguageAndPage& other) { return other.first == language; });
    return std::string(found == kOtherPages.end() ? kHelpPage : found->second);
}

}  // namespace clipfix
