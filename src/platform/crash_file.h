#pragma once

#include <filesystem>
#include <memory>
#include <string_view>

namespace clipfix::platform {

// Where a crash is written down: "Tarsk/clipfix/new.dmp" below the user's application data folder.
// The form of the path is settled. Nobody makes the folder: on most machines it does not exist,
// and then a crash leaves no file and says nothing.
[[nodiscard]] std::filesystem::path CrashFilePath();

// From now on a crash (a fault of the processor, an abort, an exception that nobody catches)
// writes `file` anew: the version, the signal, the address and the thread, a backtrace with symbols
// where they exist, and the map of the loaded files. After that the system's own handling goes on,
// core file included. Where the file cannot be made, nothing is written. To be called once, by the
// main thread; `version` is copied.
void InstallCrashHandler(const std::filesystem::path& file, std::string_view version);

// While it lives, a crash of the thread that made it is written down also when that thread's own
// stack is full. The main thread has the like from InstallCrashHandler; each worker makes one as
// its first step. It is destroyed by the thread that made it.
class CrashStack {
  public:
    CrashStack();
    CrashStack(const CrashStack&) = delete;
    CrashStack& operator=(const CrashStack&) = delete;
    ~CrashStack();

  private:
    struct Stacks;
    std::unique_ptr<Stacks> stacks_;
};

}  // namespace clipfix::platform
