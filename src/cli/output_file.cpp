#include "cli/output_file.h"

#include <system_error>
#include <utility>

#include "platform/flush_in_steps.h"
#include "platform/move_file.h"

namespace clipfix::cli {

namespace {

bool AreSameFile(const std::filesystem::path& a, const std::filesystem::path& b) {
    std::error_code failed;
    return !a.empty() && !b.empty() && std::filesystem::equivalent(a, b, failed) && !failed;
}

std::string Quoted(const std::filesystem::path& path) {
    return "'" + path.string() + "'";
}

}  // namespace

std::filesystem::path DefaultOutputName(const std::filesystem::path& damaged, bool movJob) {
    return damaged.parent_path() /
           (damaged.stem().string() + "_repaired" + (movJob ? ".mov" : ".avi"));
}

Result<OutputFile> OutputFile::Prepare(const std::filesystem::path& name, const Inputs& inputs,
                                       bool force) {
    std::error_code ignored;
    if (AreSameFile(name, inputs.damaged)) {
        return Error{
            ErrorKind::AlreadyExists, "the output is the damaged file itself: " + Quoted(name), {}};
    }
    if (AreSameFile(name, inputs.reference)) {
        return Error{ErrorKind::AlreadyExists, "the output is the reference: " + Quoted(name), {}};
    }
    const auto standing = std::filesystem::status(name, ignored);
    if (std::filesystem::exists(standing)) {
        if (!std::filesystem::is_regular_file(standing)) {
            return Error{
                ErrorKind::AlreadyExists, "the output is no plain file: " + Quoted(name), {}};
        }
        if (!force) {
            return Error{ErrorKind::AlreadyExists,
                         "the output exists already (--force replaces it): " + Quoted(name),
                         {}};
        }
    }
    if (name.filename().empty()) {
        return Error{ErrorKind::AlreadyExists, "the output is a folder: " + Quoted(name), {}};
    }
    const auto parent = name.has_parent_path() ? name.parent_path() : std::filesystem::path(".");
    auto scratch = platform::ScratchFolder::Make(parent);
    if (!scratch) {
        return scratch.Failure();
    }
    return OutputFile(name, std::move(scratch).Value(), force);
}

OutputFile::OutputFile(std::filesystem::path name, platform::ScratchFolder scratch, bool force)
    : name_(std::move(name)), scratch_(std::move(scratch)), force_(force) {}

Result<void> OutputFile::Publish(const std::filesystem::path& made,
                                 const platform::TransferProgress& progress) {
    {
        auto file = platform::File::OpenForReading(made);
        if (!file) {
            return file.Failure();
        }
        if (auto flushed = platform::FlushInSteps(file.Value(), progress); !flushed) {
            return flushed;
        }
    }
    if (force_) {
        return platform::ReplaceByRename(made, name_);
    }
    return platform::MoveFileWithProgress(made, name_,
                                          [](std::uint64_t, std::uint64_t) { return true; });
}

}  // namespace clipfix::cli
