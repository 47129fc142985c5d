#include <cstdio>
#include <exception>
#include <fmt/format.h>
#include <new>
#include <type_traits>

#include "cli/commands.h"
#include "cli/options.h"

namespace {

using namespace clipfix::cli;

ExitStatus Run(const Answered& answered) {
    fmt::print(answered.isError ? stderr : stdout, "{}", answered.text);
    return answered.isError ? ExitStatus::WrongUse : ExitStatus::Repaired;
}
ExitStatus Run(const RepairOptions& options) {
    return RunRepair(options);
}
ExitStatus Run(const CheckOptions& options) {
    return RunCheck(options);
}
ExitStatus Run(const ScanOptions& options) {
    return RunScan(options);
}
ExitStatus Run(const GuiOptions& options) {
    return RunGui(options);
}

}  // namespace

int main(int argumentCount, char** arguments) {
    try {
        const Options options = ParseCommandLine(argumentCount, arguments);
        return static_cast<int>(
            std::visit([](const auto& chosen) { return Run(chosen); }, options));
    } catch (const std::bad_alloc&) {
        std::fputs("clipfix: there is too little memory to go on\n", stderr);
        return static_cast<int>(ExitStatus::FileOrDiskFailed);
    } catch (const std::exception& error) {
        std::fprintf(stderr, "clipfix: cannot go on: %s\n", error.what());
        return static_cast<int>(ExitStatus::FileOrDiskFailed);
    }
}
