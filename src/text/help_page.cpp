#include "text/help_page.h"

#include <algorithm>
#include <array>
#include <system_error>
#include <utility>

namespace clipfix {

namespace {

namespace fs = std::filesystem;

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

fs::path FindHelpPage(const fs::path& programFolder, std::string_view page) {
    const fs::path name(page.substr(0, page.find('#')));
    if (name.empty() || name.has_parent_path()) {
        return {};
    }
    std::error_code ignored;
    for (const fs::path& folder :
         {programFolder, programFolder.parent_path() / "share" / "doc" / "kelvo-clipfix"}) {
        if (fs::is_regular_file(folder / name, ignored)) {
            return folder / name;
        }
    }
    return {};
}

}  // namespace clipfix
