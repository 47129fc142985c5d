#include "platform/crash_file.h"

#include <array>
#include <csignal>
#include <cstdint>
#include <cstring>
#include <execinfo.h>
#include <fcntl.h>
#include <string>
#include <sys/syscall.h>
#include <unistd.h>

#include "platform/folders.h"

namespace clipfix::platform {

namespace {

constexpr std::array kSignals{SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGABRT, SIGSYS, SIGTRAP};
constexpr int kDeepestBacktrace = 128;
constexpr std::size_t kStackBytes = std::size_t{64} << 10U;

// All that the handler needs is made ahead of the crash: in the handler itself only calls that
// are safe inside a signal may stand, so no allocation, no stream and no formatting of the library.
using SignalStack = std::array<unsigned char, kStackBytes>;
struct CrashSetUp {
    std::array<char, 4096> file{};
    std::array<char, 64> version{};
    SignalStack stack{};  // a crash may be an overflow of the stack
};
CrashSetUp g_crashSetUp;

stack_t AsSignalStack(SignalStack& bytes) {
    stack_t stack{};
    stack.ss_sp = bytes.data();
    stack.ss_size = bytes.size();
    return stack;
}

template <std::size_t kSize>
void CopyText(std::array<char, kSize>& to, std::string_view from) {
    const std::size_t length = from.size() < kSize ? from.size() : kSize - 1;
    std::memcpy(to.data(), from.data(), length);
    to[length] = '\0';
}

void Put(int file, const char* text) {
    std::size_t length = std::strlen(text);
    while (length > 0) {
        const ssize_t written = ::write(file, text, length);
        if (written <= 0) {
            return;
        }
        text += written;
        length -= static_cast<std::size_t>(written);
    }
}

void PutNumber(int file, std::uint64_t value, unsigned base) {
    std::array<char, 24> digits{};
    std::size_t at = digits.size() - 1;
    do {
        digits[--at] = "0123456789abcdef"[value % base];
        value /= base;
    } while (value != 0);
    Put(file, base == 16 ? "0x" : "");
    Put(file, digits.data() + at);
}

const char* NameOf(int signal) {
    switch (signal) {
        case SIGSEGV:
            return "SIGSEGV, bad memory access";
        case SIGBUS:
            return "SIGBUS, memory that is not there";
        case SIGFPE:
            return "SIGFPE, arithmetic fault";
        case SIGILL:
            return "SIGILL, bad instruction";
        case SIGABRT:
            return "SIGABRT, abort";
        case SIGSYS:
            return "SIGSYS, bad system call";
        default:
            return "SIGTRAP, trap";
    }
}

void PutMemoryMap(int file) {
    const int map = ::open("/proc/self/maps", O_RDONLY | O_CLOEXEC);
    if (map < 0) {
        return;
    }
    Put(file, "\nMemory map:\n");
    std::array<char, 1024> part{};
    for (ssize_t got = ::read(map, part.data(), part.size() - 1); got > 0;
         got = ::read(map, part.data(), part.size() - 1)) {
        part[static_cast<std::size_t>(got)] = '\0';
        Put(file, part.data());
    }
    ::close(map);
}

void WriteCrash(int file, int signal, const siginfo_t& info) {
    Put(file, "Kelvo Clipfix ");
    Put(file, g_crashSetUp.version.data());
    Put(file, "\nSignal: ");
    PutNumber(file, static_cast<std::uint64_t>(signal), 10);
    Put(file, " (");
    Put(file, NameOf(signal));
    Put(file, "), code ");
    // Codes below zero say who sent the signal; they are written as the system's 32 bits.
    PutNumber(file, static_cast<std::uint32_t>(info.si_code), 16);
    Put(file, "\nAddress: ");
    PutNumber(file, reinterpret_cast<std::uintptr_t>(info.si_addr), 16);
    Put(file, "\nProcess: ");
    PutNumber(file, static_cast<std::uint64_t>(::getpid()), 10);
    Put(file, "\nThread: ");
    PutNumber(file, static_cast<std::uint64_t>(::syscall(SYS_gettid)), 10);
    Put(file, "\n\nBacktrace:\n");
    std::array<void*, kDeepestBacktrace> frames{};
    const int depth = ::backtrace(frames.data(), kDeepestBacktrace);
    ::backtrace_symbols_fd(frames.data(), depth, file);
    PutMemoryMap(file);
}

void OnCrash(int signal, siginfo_t* info, void* /*context*/) {
    const int file =
        ::open(g_crashSetUp.file.data(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
    if (file >= 0) {
        WriteCrash(file, signal, *info);
        ::close(file);
    }
    // The handler is off by now (SA_RESETHAND). A fault comes again when the instruction is run
    // again; a signal that was sent has to be sent again. Either way the system's handling follows.
    if (info->si_code <= 0) {
        (void)::raise(signal);
    }
}

}  // namespace

std::filesystem::path CrashFilePath() {
    return UserDataFolder() / "Tarsk" / "clipfix" / "new.dmp";
}

void InstallCrashHandler(const std::filesystem::path& file, std::string_view version) {
    CopyText(g_crashSetUp.file, file.native());
    CopyText(g_crashSetUp.version, version);
    // The first call loads a library, which must not happen inside the handler.
    std::array<void*, 1> frame{};
    (void)::backtrace(frame.data(), static_cast<int>(frame.size()));

    const stack_t stack = AsSignalStack(g_crashSetUp.stack);
    (void)::sigaltstack(&stack, nullptr);

    struct sigaction action {};
    action.sa_sigaction = OnCrash;
    action.sa_flags = SA_SIGINFO | SA_ONSTACK | static_cast<int>(SA_RESETHAND);
    sigemptyset(&action.sa_mask);
    for (const int signal : kSignals) {
        (void)::sigaction(signal, &action, nullptr);
    }
}

struct CrashStack::Stacks {
    SignalStack own{};
    stack_t earlier{};
};

CrashStack::CrashStack() : stacks_(std::make_unique<Stacks>()) {
    const stack_t own = AsSignalStack(stacks_->own);
    (void)::sigaltstack(&own, &stacks_->earlier);
}

CrashStack::~CrashStack() {
    (void)::sigaltstack(&stacks_->earlier, nullptr);
}

}  // namespace clipfix::platform
