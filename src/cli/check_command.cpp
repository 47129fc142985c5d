#include <cstdio>
#include <fmt/format.h>

#include "cli/commands.h"

namespace clipfix::cli {

ExitStatus RunCheck(const CheckOptions& /*options*/) {
    fmt::print(stderr, "clipfix: MOV repair is not built yet\n");
    return ExitStatus::FileOrDiskFailed;
}

ExitStatus RunScan(const ScanOptions& /*options*/) {
    fmt::print(stderr, "clipfix: MOV repair is not built yet\n");
    return ExitStatus::FileOrDiskFailed;
}

}  // namespace clipfix::cli
