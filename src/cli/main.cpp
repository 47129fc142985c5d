#include <cstdio>
#include <exception>
#include <fmt/format.h>
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
    } catch (const std::exception& error) {  // for want of memory, say
        std::fprintf(stderr, "clipfix: %s\n", error.what());
        return static_cast<int>(ExitStatus::FileOrDiskFailed);
    }
}
