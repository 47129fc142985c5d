#pragma once

#include <string>
#include <string_view>

namespace clipfix {

// The help in English, from which all others are reached.
inline constexpr std::string_view kHelpPage = "kc-clipfix.html";

// The help in the language of a language file, named by the file's stem such as "German"; the
// English one for a language that has no help of its own.
[[nodiscard]] std::string HelpPageOf(std::string_view language);

}  // namespace clipfix
