#include "platform/crash_file.h"

#include <array>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <fstream>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <iterator>
#include <sys/mman.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

#include "platform/folders.h"
#include "support/temp_folder.h"

namespace clipfix::platform {
namespace {

using ::testing::HasSubstr;

std::string ReadAll(const std::filesystem::path& file) {
    std::ifstream stream(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
}

// Runs `crash` in a process of its own with the handler installed. Gives the signal that ended it,
// or 0.
template <typename Crash>
int SignalAfter(const std::filesystem::path& file, Crash crash) {
    const pid_t child = ::fork();
    if (child == 0) {
        constexpr rlimit kNoCore{0, 0};
        (void)::setrlimit(RLIMIT_CORE, &kNoCore);
        InstallCrashHandler(file, "1.2.3");
        crash();
        ::_exit(0);
    }
    int status = 0;
    ::waitpid(child, &status, 0);
    return WIFSIGNALED(status) ? WTERMSIG(status) : 0;
}

// A read where no memory may be read: a real fault of the processor at a known address.
void ReadForbiddenMemory() {
    void* page = ::mmap(nullptr, 4096, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    (void)*static_cast<volatile char*>(page);
}

// Calls itself until the stack is full. The condition is never met, which no compiler can know.
int FillTheStack(int depth) {
    std::array<volatile char, 4096> block{};
    block[0] = static_cast<char>(depth);
    return depth < 0 ? 0 : FillTheStack(depth + 1) + block[0];
}

TEST(CrashFile, TellsOfTheSignalTheAddressAndTheVersion) {
    const test::TempFolder folder;
    const auto file = folder.Path() / "new.dmp";
    EXPECT_EQ(SignalAfter(file, ReadForbiddenMemory), SIGSEGV);
    const std::string text = ReadAll(file);
    EXPECT_THAT(text, HasSubstr("Kelvo Clipfix 1.2.3\n"));
    EXPECT_THAT(text, HasSubstr("Signal: 11 (SIGSEGV"));
    EXPECT_THAT(text, HasSubstr("Address: 0x"));
    EXPECT_THAT(text, HasSubstr("Thread: "));
    EXPECT_THAT(text, HasSubstr("Backtrace:\n"));
    EXPECT_THAT(text, HasSubstr("platform_test"));
    EXPECT_THAT(text, HasSubstr("Memory map:\n"));
}

TEST(CrashFile, IsWrittenForAnAbortAndForAnExceptionThatNobodyCatches) {
    const test::TempFolder folder;
    const auto file = folder.Path() / "new.dmp";
    EXPECT_EQ(SignalAfter(file, [] { std::abort(); }), SIGABRT);
    EXPECT_THAT(ReadAll(file), HasSubstr("Signal: 6 (SIGABRT"));
    std::filesystem::remove(file);
    EXPECT_EQ(SignalAfter(file, [] { std::thread([] { throw 1; }).join(); }), SIGABRT);
    EXPECT_THAT(ReadAll(file), HasSubstr("Signal: 6 (SIGABRT"));
}

TEST(CrashFile, IsWrittenForAFullStackOfTheMainThread) {
    const test::TempFolder folder;
    const auto file = folder.Path() / "new.dmp";
    EXPECT_EQ(SignalAfter(file, [] { (void)FillTheStack(0); }), SIGSEGV);
    EXPECT_THAT(ReadAll(file), HasSubstr("Signal: 11 (SIGSEGV"));
}

TEST(CrashFile, IsWrittenForAFullStackOfAWorker) {
    const test::TempFolder folder;
    const auto file = folder.Path() / "new.dmp";
    const auto work = [] {
        std::thread([] {
            const CrashStack crashStack;
            (void)FillTheStack(0);
        }).join();
    };
    EXPECT_EQ(SignalAfter(file, work), SIGSEGV);
    EXPECT_THAT(ReadAll(file), HasSubstr("Signal: 11 (SIGSEGV"));
}

TEST(CrashStack, LeavesItsThreadAsItFoundIt) {
    stack_t before{};
    stack_t inside{};
    stack_t after{};
    std::thread([&] {
        (void)::sigaltstack(nullptr, &before);
        {
            const CrashStack crashStack;
            (void)::sigaltstack(nullptr, &inside);
        }
        (void)::sigaltstack(nullptr, &after);
    }).join();
    EXPECT_NE(inside.ss_sp, before.ss_sp);
    EXPECT_EQ(inside.ss_flags, 0);
    EXPECT_EQ(after.ss_sp, before.ss_sp);
    EXPECT_EQ(after.ss_flags, before.ss_flags);
}

TEST(CrashFile, IsWrittenForASignalThatSomebodySends) {
    const test::TempFolder folder;
    const auto file = folder.Path() / "new.dmp";
    EXPECT_EQ(SignalAfter(file, [] { ::kill(::getpid(), SIGFPE); }), SIGFPE);
    EXPECT_THAT(ReadAll(file), HasSubstr("Signal: 8 (SIGFPE"));
}

TEST(CrashFile, ReplacesAnEarlierOne) {
    const test::TempFolder folder;
    const auto file = folder.Path() / "new.dmp";
    std::ofstream(file) << std::string(1U << 20U, 'x');
    EXPECT_EQ(SignalAfter(file, ReadForbiddenMemory), SIGSEGV);
    EXPECT_THAT(ReadAll(file), HasSubstr("Kelvo Clipfix 1.2.3\n"));
    EXPECT_EQ(ReadAll(file).find("xxxx"), std::string::npos);
}

TEST(CrashFile, IsSilentlyNotWrittenWithoutItsFolder) {
    const test::TempFolder folder;
    EXPECT_EQ(SignalAfter(folder.Path() / "Tarsk/clipfix/new.dmp", ReadForbiddenMemory), SIGSEGV);
    EXPECT_TRUE(std::filesystem::is_empty(folder.Path()));
}

TEST(CrashFile, SaysNothingWhereItCannotBeWritten) {
    const test::TempFolder folder;
    const auto file = folder.Path() / "new.dmp";
    std::filesystem::create_directory(file);  // no permission stops the tests' user, a folder does
    const auto said = folder.Path() / "said";
    const auto work = [&] {
        const int output = ::open(said.c_str(), O_WRONLY | O_CREAT, 0600);
        (void)::dup2(output, STDERR_FILENO);
        (void)::dup2(output, STDOUT_FILENO);
        ReadForbiddenMemory();
    };
    EXPECT_EQ(SignalAfter(file, work), SIGSEGV);
    EXPECT_TRUE(std::filesystem::is_empty(file));
    EXPECT_TRUE(std::filesystem::exists(said));
    EXPECT_EQ(ReadAll(said), "");
}

TEST(CrashFile, IsNotWrittenWithoutACrash) {
    const test::TempFolder folder;
    EXPECT_EQ(SignalAfter(folder.Path() / "new.dmp", [] {}), 0);
    EXPECT_TRUE(std::filesystem::is_empty(folder.Path()));
}

TEST(CrashFile, LiesAtItsSettledPlaceInTheUsersApplicationData) {
    EXPECT_EQ(CrashFilePath(), UserDataFolder() / "Tarsk/clipfix/new.dmp");
}

}  // namespace
}  // namespace clipfix::platform
