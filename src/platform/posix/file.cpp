#include "platform/file.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <fcntl.h>
#include <limits>
#include <linux/magic.h>
#include <string>
#include <sys/stat.h>
#include <sys/vfs.h>
#include <unistd.h>

#include "platform/posix/system_error.h"

namespace clipfix::platform {

namespace {

constexpr auto kLargestOffset = static_cast<std::uint64_t>(std::numeric_limits<off_t>::max());
// What one system call takes at the most; larger counts are cut by the kernel anyway.
constexpr std::size_t kLargestTransfer = std::size_t{1} << 30U;

Error OffsetTooLarge(std::uint64_t offset) {
    return Error{ErrorKind::WriteFailed, "a file cannot be that long", offset};
}

}  // namespace

struct File::Handle {
    Handle(int openDescriptor, std::uint64_t openedSize, dev_t openedDevice, ino_t openedInode)
        : descriptor(openDescriptor), size(openedSize), device(openedDevice), inode(openedInode) {}
    Handle(const Handle&) = delete;
    Handle& operator=(const Handle&) = delete;
    Handle(Handle&&) = delete;
    Handle& operator=(Handle&&) = delete;
    ~Handle() { ::close(descriptor); }

    int descriptor;
    std::uint64_t size;
    dev_t device;
    ino_t inode;
};

File::File(std::unique_ptr<Handle> handle) : handle_(std::move(handle)) {}
File::File(File&&) noexcept = default;
File& File::operator=(File&&) noexcept = default;
File::~File() = default;

Result<File> File::OpenForReading(const std::filesystem::path& path) {
    // O_NONBLOCK keeps the open of a pipe from waiting for its other end; plain files ignore it.
    constexpr int kFlags = O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY;
    // Only the owner may read without a new access time; everybody else takes the plain open.
    int descriptor = ::open(path.c_str(), kFlags | O_NOATIME);
    if (descriptor < 0 && errno == EPERM) {
        descriptor = ::open(path.c_str(), kFlags);
    }
    if (descriptor < 0) {
        return posix::SystemError(ErrorKind::ReadFailed, "cannot open", path, errno);
    }
    struct stat facts {};
    if (::fstat(descriptor, &facts) != 0) {
        const int reason = errno;
        ::close(descriptor);
        return posix::SystemError(ErrorKind::ReadFailed, "cannot open", path, reason);
    }
    if (!S_ISREG(facts.st_mode)) {
        ::close(descriptor);
        return Error{
            ErrorKind::NotAFile, "cannot open '" + path.string() + "': it is not a plain file", {}};
    }
    return File(std::make_unique<Handle>(descriptor, static_cast<std::uint64_t>(facts.st_size),
                                         facts.st_dev, facts.st_ino));
}

Result<File> File::Create(const std::filesystem::path& path, Existing existing) {
    constexpr mode_t kReadableByAll = 0666;  // less what the user's mask takes away
    const int how = existing == Existing::Replace ? O_TRUNC : O_EXCL;
    const int descriptor =
        ::open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOCTTY | how, kReadableByAll);
    if (descriptor < 0) {
        return posix::SystemError(ErrorKind::WriteFailed, "cannot create", path, errno);
    }
    struct stat facts {};
    if (::fstat(descriptor, &facts) != 0) {
        const int reason = errno;
        ::close(descriptor);
        return posix::SystemError(ErrorKind::WriteFailed, "cannot create", path, reason);
    }
    return File(std::make_unique<Handle>(descriptor, std::uint64_t{0}, facts.st_dev, facts.st_ino));
}

Result<std::size_t> File::ReadAt(std::uint64_t offset, ByteSpan out) const {
    std::size_t done = 0;
    while (done < out.size() && offset <= kLargestOffset - done) {
        const std::size_t step = std::min(out.size() - done, kLargestTransfer);
        const ssize_t got = ::pread(handle_->descriptor, out.data() + done, step,
                                    static_cast<off_t>(offset + done));
        if (got == 0) {
            break;
        }
        if (got < 0) {
            if (errno == EINTR) {
                continue;
            }
            return Error{ErrorKind::ReadFailed, posix::Reason(errno), offset + done};
        }
        done += static_cast<std::size_t>(got);
    }
    return done;
}

std::uint64_t File::Size() const {
    return handle_->size;
}

Result<std::uint64_t> File::CurrentSize() const {
    struct stat facts {};
    if (::fstat(handle_->descriptor, &facts) != 0) {
        return Error{ErrorKind::ReadFailed, posix::Reason(errno), {}};
    }
    return static_cast<std::uint64_t>(facts.st_size);
}

Result<void> File::WriteAt(std::uint64_t offset, ByteView bytes) {
    if (offset > kLargestOffset || bytes.size() > kLargestOffset - offset) {
        return OffsetTooLarge(offset);
    }
    std::size_t done = 0;
    while (done < bytes.size()) {
        const std::size_t step = std::min(bytes.size() - done, kLargestTransfer);
        const ssize_t put = ::pwrite(handle_->descriptor, bytes.data() + done, step,
                                     static_cast<off_t>(offset + done));
        if (put < 0) {
            if (errno == EINTR) {
                continue;
            }
            return posix::WriteError(errno, offset + done);
        }
        done += static_cast<std::size_t>(put);
    }
    return {};
}

Result<void> File::SetEnd(std::uint64_t size) {
    if (size > kLargestOffset) {
        return OffsetTooLarge(size);
    }
    while (::ftruncate(handle_->descriptor, static_cast<off_t>(size)) != 0) {
        if (errno != EINTR) {
            return posix::WriteError(errno, size);
        }
    }
    return {};
}

Result<void> File::Flush() {
    while (::fsync(handle_->descriptor) != 0) {
        if (errno == EINVAL || errno == EROFS) {
            return {};  // a file system that keeps nothing has nothing to bring to a medium
        }
        if (errno != EINTR) {
            return posix::WriteError(errno, 0);
        }
    }
    return {};
}

void File::BeginFlush(std::uint64_t offset, std::uint64_t length) {
    if (offset <= kLargestOffset && length <= kLargestOffset - offset) {
        // Advice only: what is not begun now is left to Flush.
        static_cast<void>(::sync_file_range(handle_->descriptor, static_cast<off_t>(offset),
                                            static_cast<off_t>(length), SYNC_FILE_RANGE_WRITE));
    }
}

Result<void> File::FlushStretch(std::uint64_t offset, std::uint64_t length) {
    if (offset > kLargestOffset || length > kLargestOffset - offset) {
        return OffsetTooLarge(offset);
    }
    constexpr unsigned kAndWait =
        SYNC_FILE_RANGE_WAIT_BEFORE | SYNC_FILE_RANGE_WRITE | SYNC_FILE_RANGE_WAIT_AFTER;
    while (::sync_file_range(handle_->descriptor, static_cast<off_t>(offset),
                             static_cast<off_t>(length), kAndWait) != 0) {
        if (errno == EIO || errno == ENOSPC || errno == EDQUOT) {
            return posix::WriteError(errno, offset);
        }
        if (errno != EINTR) {
            return {};  // not offered here: all is left to Flush
        }
    }
    return {};
}

Result<std::uint64_t> File::CopyWithinSystem(const File& source, std::uint64_t from,
                                             std::uint64_t to, std::uint64_t length) {
    if (from > kLargestOffset || to > kLargestOffset) {
        return std::uint64_t{0};
    }
    auto in = static_cast<off_t>(from);
    auto out = static_cast<off_t>(to);
    std::uint64_t done = 0;
    while (done < length) {
        const auto step =
            static_cast<std::size_t>(std::min<std::uint64_t>(length - done, kLargestTransfer));
        const ssize_t moved =
            ::copy_file_range(source.handle_->descriptor, &in, handle_->descriptor, &out, step, 0);
        if (moved == 0) {
            break;
        }
        if (moved < 0) {
            if (errno == EINTR) {
                continue;
            }
            if (errno == ENOSPC || errno == EDQUOT || errno == EFBIG) {
                return posix::WriteError(errno, to + done);
            }
            // Not offered between these two, or a sector that cannot be read: the caller's own
            // copy goes on from here and finds out which.
            break;
        }
        done += static_cast<std::uint64_t>(moved);
    }
    return done;
}

bool File::IsCopiedPageByPage() const {
    struct statfs facts {};
    if (::fstatfs(handle_->descriptor, &facts) != 0) {
        return false;
    }
    constexpr std::array<std::int64_t, 5> kPageByPage{
        EXT4_SUPER_MAGIC, F2FS_SUPER_MAGIC, MSDOS_SUPER_MAGIC, EXFAT_SUPER_MAGIC, TMPFS_MAGIC};
    return std::find(kPageByPage.begin(), kPageByPage.end(), facts.f_type) != kPageByPage.end();
}

void File::ExpectSequentialReads() const {
    // Advice only: a system that does not take it reads all the same.
    static_cast<void>(::posix_fadvise(handle_->descriptor, 0, 0, POSIX_FADV_SEQUENTIAL));
}

void File::ExpectReads(std::uint64_t offset, std::uint64_t length) const {
    if (offset > kLargestOffset || length > kLargestOffset - offset) {
        return;
    }
    // What is asked for in one call is cut to what the device takes in one go, often no more.
    constexpr std::uint64_t kLeastTaken = std::uint64_t{128} << 10U;
    for (std::uint64_t done = 0; done < length; done += kLeastTaken) {
        static_cast<void>(::posix_fadvise(handle_->descriptor, static_cast<off_t>(offset + done),
                                          static_cast<off_t>(std::min(kLeastTaken, length - done)),
                                          POSIX_FADV_WILLNEED));
    }
}

bool File::IsSameFileAs(const File& other) const {
    return handle_->device == other.handle_->device && handle_->inode == other.handle_->inode;
}

}  // namespace clipfix::platform
