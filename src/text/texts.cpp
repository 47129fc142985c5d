#include "text/texts.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <system_error>
#include <utility>

#include "platform/folders.h"
#include "text/profile_file.h"

namespace clipfix {
namespace {

namespace fs = std::filesystem;

constexpr std::array<std::string_view, 5> kCommandLanguages{"English", "French", "German",
                                                            "Italian", "Spanish"};

bool EqualIgnoringCase(std::string_view a, std::string_view b) {
    const auto lower = [](char c) {
        return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
    };
    return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                      [&](char x, char y) { return lower(x) == lower(y); });
}

// The number that a text begins with, as the C library's atoi reads it; 0 for a text that begins
// with none, so that a language's name counts as 0.
long NumberOf(const std::string& text) {
    return std::strtol(text.c_str(), nullptr, 10);
}

}  // namespace

TextPaths FindTextPaths(const fs::path& programFolder, const fs::path& sharedFolder,
                        const fs::path& userFolder) {
    TextPaths paths{programFolder / "settings.ini", programFolder / "Lang"};
    std::error_code error;
    if (!fs::is_directory(paths.languageFolder, error) &&
        fs::is_directory(sharedFolder / "Lang", error)) {
        paths.languageFolder = sharedFolder / "Lang";
    }
    if (!ProfileFileOpens(paths.settingsFile) && !platform::CanWriteInto(programFolder) &&
        !userFolder.empty()) {
        fs::create_directories(userFolder, error);
        paths.settingsFile = userFolder / "settings.ini";
    }
    return paths;
}

Texts::Texts(TextPaths paths) : paths_(std::move(paths)) {}

void Texts::ReadSettings(const SystemLanguage& system) {
    std::string language = Setting("IDS_LANGUAGE");
    if (language.empty()) {
        language = ChooseFirstLanguage(system);
    }
    UseLanguage(language, ".ini");
    ReadTable();
    if (ProfileFileOpens(LanguageFile())) {
        return;
    }
    language = Setting("IDS_DEFAULT_LANGUAGE");
    Write("IDS_LANGUAGE", language);
    if (EqualIgnoringCase(table_.name, language)) {
        Write("IDS_LANGUAGE_ABR", table_.abbreviation);
    }
    UseLanguage(language, ".ini");
    ReadTable();
}

std::string Texts::ChooseFirstLanguage(const SystemLanguage& system) const {
    const std::uint32_t identifier = system.userInterfaceIdentifier != 0
                                         ? system.userInterfaceIdentifier
                                         : system.defaultLocaleIdentifier;
    if (system.majorVersion6) {
        Write("IDS_LOCALE_NAME", system.isoLanguage + "-" + system.isoCountry);
    }
    const LanguageName chosen = LanguageOfIdentifier(identifier);
    Write("IDS_DEFAULT_LANGUAGE", chosen.name);
    Write("IDS_LANGUAGE", chosen.name);
    Write("IDS_LANGUAGE_ABR", chosen.abbreviation);
    return std::string(chosen.name);
}

std::string Texts::Text(std::string_view key, std::size_t size) const {
    return ReadProfileText(LanguageFile(), kTextSection, key, size);
}

bool Texts::ChooseLanguage(int id) {
    if (id < kFirstLanguageCommand || id > kLastLanguageCommand) {
        return false;
    }
    const int number = id - kFirstLanguageCommand;
    // The command compares and writes a number where the start expects a language's name. So the
    // command for English does nothing while a name stands there, a choice holds for this run, and
    // the next start finds no file of that name and takes the default language. It is meant so.
    if (NumberOf(Setting("IDS_LANGUAGE")) == number) {
        return false;
    }
    UseLanguage(kCommandLanguages[static_cast<std::size_t>(number)], ".INI");
    Write("IDS_LANGUAGE", std::to_string(number));
    return true;
}

fs::path Texts::LanguageFile() const {
    const std::lock_guard lock(mutex_);
    return languageFile_;
}

std::string Texts::Setting(std::string_view key) const {
    return ReadProfileText(paths_.settingsFile, kTextSection, key, kLanguageNameSize);
}

void Texts::Write(std::string_view key, std::string_view value) const {
    // A settings file that cannot be written is passed over: the choice holds for this run only.
    (void)WriteProfileText(paths_.settingsFile, kTextSection, key, value);
}

void Texts::UseLanguage(std::string_view language, std::string_view extension) {
    // Joined as text, so that a name that begins with a separator stays below the folder.
    fs::path file = paths_.languageFolder;
    file += "/";
    file += language;
    file += extension;
    const std::lock_guard lock(mutex_);
    languageFile_ = std::move(file);
}

void Texts::ReadTable() {
    table_.name = Setting("IDS_LANGUAGE_0");
    table_.abbreviation = Setting("IDS_LANGUAGE_ABR_0");
}

}  // namespace clipfix
