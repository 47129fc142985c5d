#pragma once

#include <cstddef>
#include <filesystem>
#include <mutex>
#include <string>
#include <string_view>

#include "text/system_language.h"

namespace clipfix {

// The one section in which all keys stand, in the settings file and in the language files.
inline constexpr std::string_view kTextSection = "Kelvo Clipfix Windows";

// How many characters (UTF-16 units, one of them for a closing zero) a text may take.
inline constexpr std::size_t kMessageTextSize = 1000;
inline constexpr std::size_t kTitleTextSize = 200;
inline constexpr std::size_t kLanguageNameSize = 100;

// Commands of the language menu; English is the first.
inline constexpr int kFirstLanguageCommand = 40043;
inline constexpr int kLastLanguageCommand = 40047;

// Where the settings and the language files lie.
struct TextPaths {
    std::filesystem::path settingsFile;
    std::filesystem::path languageFolder;  // the folder "Lang"
};

// Beside the executable as long as that works: an installed program finds its language files in
// `sharedFolder`, and keeps its settings in `userFolder` where its own folder cannot be written.
// A settings file that lies beside the executable is always the one, read-only or not.
[[nodiscard]] TextPaths FindTextPaths(const std::filesystem::path& programFolder,
                                      const std::filesystem::path& sharedFolder,
                                      const std::filesystem::path& userFolder);

// The texts of the interface, looked up by key in the file of the language in use at the moment
// they are needed; there is no table in memory. Any thread may ask.
class Texts {
  public:
    // Reads nothing yet: until ReadSettings there is no language file and every text is empty.
    explicit Texts(TextPaths paths);

    // The choice of the language at start: from the settings file, at first start from the system,
    // and where the chosen language has no file, the default language. Writes its choices to the
    // settings file; where that fails they hold for this process only.
    void ReadSettings(const SystemLanguage& system);

    // The text of `key`, UTF-8, cut to `size` - 1 UTF-16 units; empty where file or key is missing.
    [[nodiscard]] std::string Text(std::string_view key, std::size_t size = kMessageTextSize) const;

    // The language menu's command `id`, 40043 to 40047; other ids do nothing. True when the
    // language file was changed.
    bool ChooseLanguage(int id);

    [[nodiscard]] std::filesystem::path LanguageFile() const;

  private:
    // The table of the program holds one language, as the settings file gives it.
    struct TableEntry {
        std::string name;
        std::string abbreviation;
    };

    [[nodiscard]] std::string Setting(std::string_view key) const;
    void Write(std::string_view key, std::string_view value) const;
    std::string ChooseFirstLanguage(const SystemLanguage& system) const;
    void UseLanguage(std::string_view language, std::string_view extension);
    void ReadTable();

    TextPaths paths_;
    TableEntry table_;
    mutable std::mutex mutex_;  // guards languageFile_
    std::filesystem::path languageFile_;
};

}  // namespace clipfix
