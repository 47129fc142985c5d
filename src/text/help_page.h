#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace clipfix {

// The help in English, from which all others are reached.
inline constexpr std::string_view kHelpPage = "kc-clipfix.html";

// The help in the language of a language file, named by the file's stem such as "German"; the
// English one for a language that has no help of its own.
[[nodiscard]] std::string HelpPageOf(std::string_view language);

// Where the page of the help lies: beside the executable, or in the documentation that was
// installed with it. `page` may end in "#" and a place within the page, which is passed over.
// Empty when the page is at neither place, or is named as lying in another folder.
[[nodiscard]] std::filesystem::path FindHelpPage(const std::filesystem::path& programFolder,
                                                 std::string_view page);

}  // namespace clipfix
