#include "platform/sound_output.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <system_error>

namespace clipfix::platform {

namespace {

namespace fs = std::filesystem;

bool Exists(const fs::path& path) {
    std::error_code ignored;
    return fs::exists(path, ignored);
}

fs::path FolderOf(const char* variable) {
    const char* value = std::getenv(variable);
    return value == nullptr ? "" : value;
}

// A playback device of a card is named pcmC0D0p, a recording device pcmC0D0c.
bool HasCard() {
    std::error_code error;
    const fs::directory_iterator devices("/dev/snd", error);
    return !error && std::any_of(begin(devices), end(devices), [](const fs::directory_entry& e) {
        const std::string name = e.path().filename().string();
        return name.starts_with("pcm") && name.ends_with('p');
    });
}

}  // namespace

bool HasSoundOutput() {
    const fs::path runtime = FolderOf("XDG_RUNTIME_DIR");
    const fs::path home = FolderOf("HOME");
    return std::getenv("PULSE_SERVER") != nullptr ||
           (!runtime.empty() &&
            (Exists(runtime / "pulse" / "native") || Exists(runtime / "pipewire-0"))) ||
           (!home.empty() && Exists(home / ".asoundrc")) || Exists("/etc/asound.conf") || HasCard();
}

}  // namespace clipfix::platform
