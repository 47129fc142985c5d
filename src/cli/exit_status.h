#pragma once

namespace clipfix::cli {

// What the process answers to its caller. The numbers are a contract; README.md lists them.
enum class ExitStatus {
    Repaired = 0,  // also: what was asked for was answered
    NothingRecovered = 1,
    WrongUse = 2,
    ReferenceNeeded = 3,
    ReferenceUnusable = 4,
    FileOrDiskFailed = 5,
    Cancelled = 130,
};

}  // namespace clipfix::cli
