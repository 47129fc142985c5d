#include "platform/posix/system_error.h"

#include <cerrno>
#include <system_error>

namespace clipfix::platform::posix {

namespace {

ErrorKind KindOf(int errorNumber, ErrorKind otherwise) {
    switch (errorNumber) {
        case ENOENT:
        case ENOTDIR:
            return ErrorKind::NotFound;
        case EISDIR:
        case ENXIO:
            return ErrorKind::NotAFile;
        case EACCES:
        case EPERM:
        case EROFS:
            return ErrorKind::PermissionDenied;
        case ENOSPC:
        case EDQUOT:
        case EFBIG:
            return ErrorKind::NoSpace;
        case EEXIST:
            return ErrorKind::AlreadyExists;
        default:
            return otherwise;
    }
}

}  // namespace

std::string Reason(int errorNumber) {
    return std::generic_category().message(errorNumber);
}

Error SystemError(ErrorKind otherwise, std::string_view what, const std::filesystem::path& path,
                  int errorNumber) {
    return Error{KindOf(errorNumber, otherwise),
                 std::string(what) + " '" + path.string() + "': " + Reason(errorNumber),
                 {}};
}

Error WriteError(int errorNumber, std::uint64_t offset) {
    return Error{KindOf(errorNumber, ErrorKind::WriteFailed),
                 "cannot write: " + Reason(errorNumber), offset};
}

}  // namespace clipfix::platform::posix
