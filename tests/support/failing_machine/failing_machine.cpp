// Loaded ahead of the C library by a test: a medium that is dying. Reads of one file fail with EIO
// where a stretch of it lies on a bad place (FAILING_READS_FILE, _FROM, _LENGTH). What is flushed
// arrives slowly (SLOW_FLUSH: milliseconds for a call) or not at all (FAILING_FLUSH: EIO). A disk
// that keeps one waiting: writes below GATED_FOLDER stand still as long as the file GATE exists.
// And a machine that is at its end: no thread can be started (FAILING_THREADS).

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <dlfcn.h>
#include <fcntl.h>
#include <pthread.h>
#include <sys/stat.h>
#include <sys/types.h>
#include <unistd.h>

namespace {

bool IsBroken(int descriptor, off64_t from, std::size_t length) {
    const char* file = std::getenv("FAILING_READS_FILE");
    const char* start = std::getenv("FAILING_READS_FROM");
    const char* count = std::getenv("FAILING_READS_LENGTH");
    if (file == nullptr || start == nullptr || count == nullptr) {
        return false;
    }
    struct stat64 one {};
    struct stat64 other {};
    if (::fstat64(descriptor, &one) != 0 || ::stat64(file, &other) != 0 ||
        one.st_ino != other.st_ino || one.st_dev != other.st_dev) {
        return false;
    }
    const long long first = std::atoll(start);
    const long long last = first + std::atoll(count);
    return first < last && from < last && first < from + static_cast<long long>(length);
}

template <typename Function>
Function Next(const char* name) {
    void* symbol = ::dlsym(RTLD_NEXT, name);
    Function function = nullptr;
    std::memcpy(&function, &symbol, sizeof function);
    return function;
}

// False, with errno set, where nothing arrives.
bool Arrives() {
    if (const char* wait = std::getenv("SLOW_FLUSH")) {
        const timespec time{0, std::atol(wait) * 1'000'000};
        ::nanosleep(&time, nullptr);
    }
    if (std::getenv("FAILING_FLUSH") == nullptr) {
        return true;
    }
    errno = EIO;
    return false;
}

void WaitAtTheGate(int descriptor) {
    const char* folder = std::getenv("GATED_FOLDER");
    const char* gate = std::getenv("GATE");
    if (folder == nullptr || gate == nullptr) {
        return;
    }
    char link[64];
    char path[4096] = {};
    std::snprintf(link, sizeof link, "/proc/self/fd/%d", descriptor);
    if (::readlink(link, path, sizeof path - 1) < 0 ||
        std::strncmp(path, folder, std::strlen(folder)) != 0) {
        return;
    }
    while (::access(gate, F_OK) == 0) {
        const timespec kLook{0, 10'000'000};
        ::nanosleep(&kLook, nullptr);
    }
}

}  // namespace

extern "C" {

ssize_t pwrite64(int descriptor, const void* buffer, std::size_t length, off64_t to) {
    using Pwrite = ssize_t (*)(int, const void*, std::size_t, off64_t);
    static const auto kNext = Next<Pwrite>("pwrite64");
    WaitAtTheGate(descriptor);
    return kNext(descriptor, buffer, length, to);
}

int pthread_create(pthread_t* thread, const pthread_attr_t* attributes, void* (*start)(void*),
                   void* argument) {
    using Create = int (*)(pthread_t*, const pthread_attr_t*, void* (*)(void*), void*);
    static const auto kNext = Next<Create>("pthread_create");
    return std::getenv("FAILING_THREADS") != nullptr ? EAGAIN
                                                     : kNext(thread, attributes, start, argument);
}

int fsync(int descriptor) {
    static const auto kNext = Next<int (*)(int)>("fsync");
    return Arrives() ? kNext(descriptor) : -1;
}

int sync_file_range(int descriptor, off64_t from, off64_t length, unsigned flags) {
    using Sync = int (*)(int, off64_t, off64_t, unsigned);
    static const auto kNext = Next<Sync>("sync_file_range");
    if ((flags & SYNC_FILE_RANGE_WAIT_AFTER) != 0 && !Arrives()) {
        return -1;
    }
    return kNext(descriptor, from, length, flags);
}

ssize_t pread64(int descriptor, void* buffer, std::size_t length, off64_t from) {
    using Pread = ssize_t (*)(int, void*, std::size_t, off64_t);
    static const auto kNext = Next<Pread>("pread64");
    if (IsBroken(descriptor, from, length)) {
        errno = EIO;
        return -1;
    }
    return kNext(descriptor, buffer, length, from);
}

ssize_t copy_file_range(int in, off64_t* inOffset, int out, off64_t* outOffset, std::size_t length,
                        unsigned flags) {
    using Copy = ssize_t (*)(int, off64_t*, int, off64_t*, std::size_t, unsigned);
    static const auto kNext = Next<Copy>("copy_file_range");
    if (inOffset != nullptr && IsBroken(in, *inOffset, length)) {
        errno = EIO;
        return -1;
    }
    return kNext(in, inOffset, out, outOffset, length, flags);
}
}
