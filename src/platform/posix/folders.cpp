#include "platform/folders.h"

#include <cerrno>
#include <cstdlib>
#include <fcntl.h>
#include <string>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <system_error>
#include <unistd.h>
#include <utility>

#include "platform/posix/system_error.h"

namespace clipfix::platform {

namespace {

constexpr std::string_view kScratchPrefix = ".clipfix-";

std::filesystem::path FolderFromEnvironment(const char* variable, const char* belowHome) {
    // An XDG folder counts only when it is absolute; anything else is passed over by its rule.
    if (const char* set = std::getenv(variable); set != nullptr && set[0] == '/') {
        return set;
    }
    const char* home = std::getenv("HOME");
    return std::filesystem::path(home != nullptr && home[0] == '/' ? home : "/tmp") / belowHome;
}

// Opens a folder and takes its lock; below 0 when it is in use or cannot be opened.
int LockFolder(const std::filesystem::path& path) {
    const int descriptor = ::open(path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC | O_NOFOLLOW);
    if (descriptor >= 0 && ::flock(descriptor, LOCK_EX | LOCK_NB) != 0) {
        ::close(descriptor);
        return -1;
    }
    return descriptor;
}

void RemoveLeftOvers(const std::filesystem::path& parent) {
    std::error_code ignored;
    for (std::filesystem::directory_iterator at(parent, ignored), end; !ignored && at != end;
         at.increment(ignored)) {
        const std::string name = at->path().filename().string();
        struct stat facts {};
        if (!name.starts_with(kScratchPrefix) || ::lstat(at->path().c_str(), &facts) != 0 ||
            !S_ISDIR(facts.st_mode) || facts.st_uid != ::geteuid()) {
            continue;
        }
        const int lock = LockFolder(at->path());
        if (lock >= 0) {
            std::error_code notRemoved;
            std::filesystem::remove_all(at->path(), notRemoved);
            ::close(lock);
        }
    }
}

}  // namespace

std::filesystem::path ProgramPath() {
    std::error_code failed;
    auto path = std::filesystem::read_symlink("/proc/self/exe", failed);
    return failed ? std::filesystem::path() : path;
}

std::filesystem::path UserCacheFolder() {
    return FolderFromEnvironment("XDG_CACHE_HOME", ".cache") / "kelvo-clipfix";
}

std::filesystem::path UserDataFolder() {
    return FolderFromEnvironment("XDG_DATA_HOME", ".local/share");
}

std::filesystem::path UserConfigFolder() {
    return FolderFromEnvironment("XDG_CONFIG_HOME", ".config") / "kelvo-clipfix";
}

std::optional<std::uint64_t> FreeBytes(const std::filesystem::path& path) {
    std::error_code failed;
    std::filesystem::path place = std::filesystem::absolute(path, failed);
    if (failed) {
        return std::nullopt;
    }
    while (!std::filesystem::exists(place, failed) && place.has_relative_path()) {
        place = place.parent_path();
    }
    struct statvfs facts {};
    if (::statvfs(place.c_str(), &facts) != 0) {
        return std::nullopt;
    }
    return static_cast<std::uint64_t>(facts.f_bavail) * facts.f_frsize;
}

Result<bool> MakeFolder(const std::filesystem::path& path) {
    constexpr mode_t kAllAsTheMaskLeaves = 0777;
    if (::mkdir(path.c_str(), kAllAsTheMaskLeaves) == 0) {
        return true;
    }
    const int reason = errno;
    std::error_code ignored;
    if (reason == EEXIST && std::filesystem::is_directory(path, ignored)) {
        return false;
    }
    return posix::SystemError(ErrorKind::WriteFailed, "cannot make the folder", path, reason);
}

void SetHidden(const std::filesystem::path& /*path*/) {}

bool CanWriteInto(const std::filesystem::path& folder) {
    return ::access(folder.c_str(), W_OK | X_OK) == 0;
}

Result<ScratchFolder> ScratchFolder::Make(const std::filesystem::path& parent) {
    RemoveLeftOvers(parent);
    std::string pattern = (parent / std::string(kScratchPrefix)).string() + "XXXXXX";
    if (::mkdtemp(pattern.data()) == nullptr) {
        return posix::SystemError(ErrorKind::WriteFailed, "cannot make a work folder in", parent,
                                  errno);
    }
    const int lock = LockFolder(pattern);
    return ScratchFolder(pattern, lock);
}

ScratchFolder::ScratchFolder(std::filesystem::path path, int lock)
    : path_(std::move(path)), lock_(lock) {}

ScratchFolder::ScratchFolder(ScratchFolder&& other) noexcept
    : path_(std::exchange(other.path_, {})), lock_(std::exchange(other.lock_, -1)) {}

ScratchFolder& ScratchFolder::operator=(ScratchFolder&& other) noexcept {
    if (this != &other) {
        Remove();
        path_ = std::exchange(other.path_, {});
        lock_ = std::exchange(other.lock_, -1);
    }
    return *this;
}

ScratchFolder::~ScratchFolder() {
    Remove();
}

void ScratchFolder::Remove() noexcept {
    if (!path_.empty()) {
        std::error_code notRemoved;
        std::filesystem::remove_all(path_, notRemoved);
        path_.clear();
    }
    if (lock_ >= 0) {
        ::close(lock_);
        lock_ = -1;
    }
}

}  // namespace clipfix::platform
