#include "platform/instance_lock.h"

#include <cerrno>
#include <cstdlib>
#include <fcntl.h>
#include <string>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

#include "platform/posix/system_error.h"

namespace clipfix::platform {

namespace {

constexpr mode_t kOnlyTheUser = 0700;

// A folder that is really one, that the user owns and nobody else can enter.
bool IsPrivateFolder(const std::filesystem::path& path) {
    struct stat facts {};
    return ::lstat(path.c_str(), &facts) == 0 && S_ISDIR(facts.st_mode) &&
           facts.st_uid == ::geteuid() && (facts.st_mode & 0077U) == 0;
}

}  // namespace

std::filesystem::path UserRuntimeFolder() {
    if (const char* set = std::getenv("XDG_RUNTIME_DIR"); set != nullptr && set[0] == '/') {
        struct stat facts {};
        if (::stat(set, &facts) == 0 && S_ISDIR(facts.st_mode)) {
            return set;
        }
    }
    const std::filesystem::path own = "/tmp/kelvo-clipfix-" + std::to_string(::geteuid());
    (void)::mkdir(own.c_str(), kOnlyTheUser);
    return IsPrivateFolder(own) ? own : std::filesystem::path();
}

Result<std::optional<InstanceLock>> InstanceLock::Take(const std::filesystem::path& folder,
                                                       std::string_view name) {
    const std::filesystem::path file = folder / std::string(name).append(".lock");
    const int handle = ::open(file.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, 0600);
    if (handle < 0) {
        return posix::SystemError(ErrorKind::WriteFailed, "cannot make the lock file", file, errno);
    }
    if (::flock(handle, LOCK_EX | LOCK_NB) == 0) {
        return std::optional<InstanceLock>(InstanceLock(handle));
    }
    const int reason = errno;
    ::close(handle);
    if (reason == EWOULDBLOCK) {
        return std::optional<InstanceLock>();
    }
    return posix::SystemError(ErrorKind::WriteFailed, "cannot lock the file", file, reason);
}

InstanceLock::InstanceLock(InstanceLock&& other) noexcept
    : handle_(std::exchange(other.handle_, -1)) {}

InstanceLock& InstanceLock::operator=(InstanceLock&& other) noexcept {
    if (this != &other) {
        Release();
        handle_ = std::exchange(other.handle_, -1);
    }
    return *this;
}

InstanceLock::~InstanceLock() {
    Release();
}

void InstanceLock::Release() noexcept {
    // The file itself stays: a start that has just opened it would else lock a file without a name.
    if (handle_ >= 0) {
        ::close(handle_);
        handle_ = -1;
    }
}

}  // namespace clipfix::platform
