#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>

#include "base/result.h"

namespace clipfix::platform {

// The running program's own file, with links resolved. Empty when the system does not tell.
[[nodiscard]] std::filesystem::path ProgramPath();

// The folder in which the program may keep what it can make again: XDG_CACHE_HOME, or .cache below
// the user's home, with "kelvo-clipfix" behind it. The folder need not exist.
[[nodiscard]] std::filesystem::path UserCacheFolder();

// The user's application data folder: XDG_DATA_HOME, or .local/share below the user's home.
[[nodiscard]] std::filesystem::path UserDataFolder();

// Where the user's settings of the program go: XDG_CONFIG_HOME, or .config below the user's home,
// with "kelvo-clipfix" behind it. The folder need not exist.
[[nodiscard]] std::filesystem::path UserConfigFolder();

// Bytes that the caller may still write on the file system that holds `path`; for a path that does
// not exist yet, of its nearest folder that does. Nothing when the system does not tell.
[[nodiscard]] std::optional<std::uint64_t> FreeBytes(const std::filesystem::path& path);

// Makes a folder, whose parent must exist. Gives true when it was made now, false when a folder
// stood there already.
Result<bool> MakeFolder(const std::filesystem::path& path);

// Marks a file or folder as hidden. Where names decide what is hidden, as here, it does nothing.
void SetHidden(const std::filesystem::path& path);

// Whether a new file can be made in the folder.
[[nodiscard]] bool CanWriteInto(const std::filesystem::path& folder);

// A folder of one's own below a given one, with a name that nobody else has, removed with all that
// is in it when the owner goes. A folder that a killed process left behind is removed by the next
// Make in the same place.
class ScratchFolder {
  public:
    static Result<ScratchFolder> Make(const std::filesystem::path& parent);

    ScratchFolder(ScratchFolder&& other) noexcept;
    ScratchFolder& operator=(ScratchFolder&& other) noexcept;
    ScratchFolder(const ScratchFolder&) = delete;
    ScratchFolder& operator=(const ScratchFolder&) = delete;
    ~ScratchFolder();

    [[nodiscard]] const std::filesystem::path& Path() const { return path_; }

  private:
    ScratchFolder(std::filesystem::path path, int lock);
    void Remove() noexcept;

    std::filesystem::path path_;
    int lock_ = -1;  // an open handle of the folder whose lock tells others that it is in use
};

}  // namespace clipfix::platform
