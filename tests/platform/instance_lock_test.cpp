#include "platform/instance_lock.h"

#include <csignal>
#include <cstdlib>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include "support/temp_folder.h"

namespace clipfix::platform {
namespace {

enum class Taken { First, AlreadyRunning, Failed };

Taken Outcome(const Result<std::optional<InstanceLock>>& result) {
    if (!result) {
        return Taken::Failed;
    }
    return result.Value() ? Taken::First : Taken::AlreadyRunning;
}

// What another process gets that tries the lock now.
Taken OutcomeInAnotherProcess(const std::filesystem::path& folder, const char* name) {
    const pid_t child = ::fork();
    if (child == 0) {
        ::_exit(static_cast<int>(Outcome(InstanceLock::Take(folder, name))));
    }
    int status = 0;
    ::waitpid(child, &status, 0);
    return static_cast<Taken>(WEXITSTATUS(status));
}

TEST(InstanceLock, LetsOneInstanceRun) {
    const test::TempFolder folder;
    auto lock = InstanceLock::Take(folder.Path(), "GlobalMutexKCF");
    ASSERT_EQ(Outcome(lock), Taken::First);
    EXPECT_EQ(OutcomeInAnotherProcess(folder.Path(), "GlobalMutexKCF"), Taken::AlreadyRunning);
    EXPECT_EQ(OutcomeInAnotherProcess(folder.Path(), "OtherName"), Taken::First);
}

TEST(InstanceLock, IsFreeAgainWhenItsOwnerGoes) {
    const test::TempFolder folder;
    {
        auto lock = InstanceLock::Take(folder.Path(), "GlobalMutexKCF");
        ASSERT_EQ(Outcome(lock), Taken::First);
        const InstanceLock moved = std::move(*lock.Value());
        EXPECT_EQ(OutcomeInAnotherProcess(folder.Path(), "GlobalMutexKCF"), Taken::AlreadyRunning);
    }
    EXPECT_EQ(OutcomeInAnotherProcess(folder.Path(), "GlobalMutexKCF"), Taken::First);
}

TEST(InstanceLock, IsFreeAgainWhenItsProcessIsKilled) {
    const test::TempFolder folder;
    std::array<int, 2> ready{};
    ASSERT_EQ(::pipe(ready.data()), 0);
    const pid_t child = ::fork();
    if (child == 0) {
        auto lock = InstanceLock::Take(folder.Path(), "GlobalMutexKCF");
        const char sign = Outcome(lock) == Taken::First ? '1' : '0';
        (void)!::write(ready[1], &sign, 1);
        ::pause();
        ::_exit(0);
    }
    char sign = 0;
    ASSERT_EQ(::read(ready[0], &sign, 1), 1);
    ASSERT_EQ(sign, '1');
    EXPECT_EQ(Outcome(InstanceLock::Take(folder.Path(), "GlobalMutexKCF")), Taken::AlreadyRunning);
    ::kill(child, SIGKILL);
    ::waitpid(child, nullptr, 0);
    EXPECT_EQ(Outcome(InstanceLock::Take(folder.Path(), "GlobalMutexKCF")), Taken::First);
    ::close(ready[0]);
    ::close(ready[1]);
}

TEST(InstanceLock, FailsWhereNoFileCanBeMade) {
    const test::TempFolder folder;
    EXPECT_EQ(Outcome(InstanceLock::Take(folder.Path() / "missing", "GlobalMutexKCF")),
              Taken::Failed);
}

TEST(UserRuntimeFolder, IsTheSessionsOwnOrAPrivateOne) {
    const test::TempFolder folder;
    const char* before = std::getenv("XDG_RUNTIME_DIR");
    const std::string kept = before != nullptr ? before : "";
    ::setenv("XDG_RUNTIME_DIR", folder.Path().c_str(), 1);
    EXPECT_EQ(UserRuntimeFolder(), folder.Path());
    ::setenv("XDG_RUNTIME_DIR", "relative", 1);
    const std::filesystem::path own = UserRuntimeFolder();
    EXPECT_EQ(own, "/tmp/kelvo-clipfix-" + std::to_string(::geteuid()));
    using std::filesystem::perms;
    EXPECT_EQ(std::filesystem::status(own).permissions() & (perms::group_all | perms::others_all),
              perms::none);
    before != nullptr ? ::setenv("XDG_RUNTIME_DIR", kept.c_str(), 1)
                      : ::unsetenv("XDG_RUNTIME_DIR");
}

}  // namespace
}  // namespace clipfix::platform
