#include <cstdio>
#include <fmt/format.h>
#include <string>
#include <unistd.h>

#include "cli/commands.h"
#include "platform/folders.h"

namespace clipfix::cli {

ExitStatus RunGui(const GuiOptions& options) {
    // The window is a program of its own beside this one; it takes this process's place.
    const std::string program = (platform::ProgramPath().parent_path() / "kelvo-clipfix").string();
    std::string file = options.file;
    std::string name = "kelvo-clipfix";
    char* const arguments[] = {name.data(), file.empty() ? nullptr : file.data(), nullptr};
    ::execv(program.c_str(), arguments);
    fmt::print(stderr, "clipfix: the window is not installed\n");
    return ExitStatus::FileOrDiskFailed;
}

}  // namespace clipfix::cli
