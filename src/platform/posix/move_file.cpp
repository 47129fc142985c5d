#include "platform/move_file.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <sys/syscall.h>
#include <system_error>
#include <unistd.h>

#include "base/bytes.h"
#include "platform/file.h"
#include "platform/posix/system_error.h"

namespace clipfix::platform {

namespace {

// Bytes between two looks at the progress routine: a slow medium takes some 20 MB in a second, and
// whoever wants to stop the copy is not to wait longer than a blink.
constexpr std::uint64_t kPiece = std::uint64_t{1} << 20U;
// How far the copy may be ahead of the medium: at the end so much is left to wait for, when nobody
// can stop it any more.
constexpr std::uint64_t kAheadOfMedium = std::uint64_t{32} << 20U;

// 0, or the system's error number.
int RenameWithoutReplacing(const std::filesystem::path& source,
                           const std::filesystem::path& destination) {
    if (::renameat2(AT_FDCWD, source.c_str(), AT_FDCWD, destination.c_str(), RENAME_NOREPLACE) ==
        0) {
        return 0;
    }
    if (errno != EINVAL && errno != ENOSYS) {
        return errno;
    }
    // A file system that knows no such rename: a second name never replaces anything either.
    if (::link(source.c_str(), destination.c_str()) != 0) {
        return errno;
    }
    return ::unlink(source.c_str()) == 0 ? 0 : errno;
}

// Copies one file to the front of another, piece by piece; inside the system for as long as it
// offers that for the two.
class PieceCopy {
  public:
    PieceCopy(const File& from, File& to) : from_(from), to_(to) {}

    // Copies some of the `length` bytes from `offset` on, at least one, and tells how many.
    Result<std::uint64_t> Copy(std::uint64_t offset, std::uint64_t length) {
        if (withinSystem_) {
            auto copied = to_.CopyWithinSystem(from_, offset, offset, length);
            if (!copied || copied.Value() != 0) {
                return copied;
            }
            withinSystem_ = false;
        }
        return CopyThroughMemory(offset, length);
    }

  private:
    Result<std::uint64_t> CopyThroughMemory(std::uint64_t offset, std::uint64_t length) {
        buffer_.resize(static_cast<std::size_t>(length));
        const auto got = from_.ReadAt(offset, buffer_);
        if (!got) {
            return got.Failure();
        }
        if (got.Value() == 0) {
            return Error{ErrorKind::ReadFailed, "the file became shorter while it was moved",
                         offset};
        }
        if (auto put = to_.WriteAt(offset, SubView(buffer_, 0, got.Value())); !put) {
            return put.Failure();
        }
        return static_cast<std::uint64_t>(got.Value());
    }

    const File& from_;
    File& to_;
    bool withinSystem_ = true;
    ByteVector buffer_;
};

Result<void> CopyPieces(const File& from, File& to, const TransferProgress& progress) {
    const std::uint64_t total = from.Size();
    PieceCopy copy(from, to);
    std::uint64_t done = 0;
    std::uint64_t onMedium = 0;
    while (progress(done, total)) {
        if (done == total) {
            return to.Flush();
        }
        const auto copied = copy.Copy(done, std::min(kPiece, total - done));
        if (!copied) {
            return copied.Failure();
        }
        to.BeginFlush(done, copied.Value());
        done += copied.Value();
        if (done - onMedium > kAheadOfMedium) {
            if (auto flushed = to.FlushStretch(onMedium, done - kAheadOfMedium - onMedium);
                !flushed) {
                return flushed;
            }
            onMedium = done - kAheadOfMedium;
        }
    }
    return Error{ErrorKind::Cancelled, "the move was cancelled", done};
}

Result<void> CopyThenDelete(const std::filesystem::path& source,
                            const std::filesystem::path& destination,
                            const TransferProgress& progress) {
    const auto from = File::OpenForReading(source);
    if (!from) {
        return from.Failure();
    }
    auto to = File::Create(destination, File::Existing::Refuse);
    if (!to) {
        return to.Failure();
    }
    if (auto copied = CopyPieces(from.Value(), to.Value(), progress); !copied) {
        std::error_code ignored;
        std::filesystem::remove(destination, ignored);
        return copied;
    }
    std::error_code failed;
    std::filesystem::remove(source, failed);
    if (failed) {
        return posix::SystemError(ErrorKind::WriteFailed, "cannot delete", source, failed.value());
    }
    return {};
}

// What was renamed may still be on its way to the medium. The rename stands whatever becomes of
// that: to take it back would help nobody.
void BringToMedium(const std::filesystem::path& path) {
    if (auto file = File::OpenForReading(path)) {
        static_cast<void>(file.Value().Flush());
    }
}

}  // namespace

Result<void> MoveFileWithProgress(const std::filesystem::path& source,
                                  const std::filesystem::path& destination,
                                  const TransferProgress& progress) {
    const int reason = RenameWithoutReplacing(source, destination);
    if (reason == 0) {
        BringToMedium(destination);
        static_cast<void>(progress(1, 1));  // it is done; there is nothing left to stop
        return {};
    }
    if (reason != EXDEV && reason != EPERM) {
        return posix::SystemError(ErrorKind::WriteFailed, "cannot move to", destination, reason);
    }
    return CopyThenDelete(source, destination, progress);
}

Result<void> ReplaceByRename(const std::filesystem::path& source,
                             const std::filesystem::path& destination) {
    if (::rename(source.c_str(), destination.c_str()) != 0) {
        return posix::SystemError(ErrorKind::WriteFailed, "cannot write", destination, errno);
    }
    const auto parent =
        destination.has_parent_path() ? destination.parent_path() : std::filesystem::path(".");
    const int folder = ::open(parent.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (folder >= 0) {
        static_cast<void>(::fsync(folder));
        ::close(folder);
    }
    return {};
}

}  // namespace clipfix::platform
