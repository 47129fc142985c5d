#include "player/player_texts.h"

#include <algorithm>
#include <system_error>

#include "base/bytes.h"
#include "text/profile_file.h"
#include "text/system_language.h"
#include "text/texts.h"

namespace clipfix {

namespace {

namespace fs = std::filesystem;

// The language menu writes the number of its command where a name is expected at the start. The
// player runs beside the program, so for it the number is the choice that holds.
constexpr std::array<std::string_view, 5> kChosenByNumber{"English", "French", "German", "Italian",
                                                          "Spanish"};

std::string NameOfSetting(const std::string& setting) {
    if (setting.size() == 1 && setting[0] >= '0' && setting[0] <= '4') {
        return std::string(kChosenByNumber[static_cast<std::size_t>(setting[0] - '0')]);
    }
    return setting;
}

std::string SystemsLanguage() {
    const SystemLanguage system = ReadSystemLanguage();
    const std::uint32_t identifier = system.userInterfaceIdentifier != 0
                                         ? system.userInterfaceIdentifier
                                         : system.defaultLocaleIdentifier;
    return std::string(LanguageOfIdentifier(identifier).name);
}

// A name made of letters alone leads to no other folder.
bool IsPlainName(const std::string& name) {
    return !name.empty() && std::all_of(name.begin(), name.end(), [](char letter) {
        return IsAsciiLetter(static_cast<std::uint8_t>(letter));
    });
}

fs::path FirstThatOpens(std::initializer_list<fs::path> files) {
    const auto* found = std::find_if(files.begin(), files.end(), ProfileFileOpens);
    return found == files.end() ? fs::path() : *found;
}

}  // namespace

PlayerTexts::PlayerTexts(const fs::path& programFolder, const fs::path& sharedFolder,
                         const fs::path& userFolder) {
    const fs::path settings =
        FirstThatOpens({programFolder / "settings.ini", userFolder / "settings.ini"});
    std::string language;
    if (!settings.empty()) {
        language = NameOfSetting(
            ReadProfileText(settings, kTextSection, "IDS_LANGUAGE", kLanguageNameSize));
    }
    for (const std::string& name : {language, SystemsLanguage()}) {
        if (IsPlainName(name) && languageFile_.empty()) {
            languageFile_ = FirstThatOpens({programFolder / "Lang" / (name + ".ini"),
                                            sharedFolder / "Lang" / (name + ".ini")});
        }
    }
}

QString PlayerTexts::Word(const PlayerText& text) const {
    std::string found;
    if (!languageFile_.empty()) {
        found = ReadProfileText(languageFile_, kTextSection, text.key, kMessageTextSize);
    }
    return QString::fromStdString(found.empty() ? text.english : found);
}

}  // namespace clipfix
