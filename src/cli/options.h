#pragma once

#include <string>
#include <variant>

namespace clipfix::cli {

struct RepairOptions {
    std::string damaged;
    std::string reference;  // empty: none given
    std::string output;     // empty: beside the damaged file
    bool force = false;
    bool json = false;
    bool quiet = false;
    bool trace = false;  // the JSON object also lists every percent that was shown
};

struct CheckOptions {
    std::string file;
    bool json = false;
};

struct ScanOptions {
    std::string damaged;
    std::string reference;
    bool json = false;
};

struct GuiOptions {
    std::string file;  // empty: none given
};

// Nothing is left to do: a help or a version was asked for, or the use was wrong.
struct Answered {
    std::string text;  // what to print
    bool isError = false;
};

using Options = std::variant<Answered, RepairOptions, CheckOptions, ScanOptions, GuiOptions>;

// The command line as a value. Never throws, never prints.
[[nodiscard]] Options ParseCommandLine(int argumentCount, const char* const* arguments);

}  // namespace clipfix::cli
