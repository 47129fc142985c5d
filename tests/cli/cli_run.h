#pragma once

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <gtest/gtest.h>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "support/run_process.h"
#include "support/temp_folder.h"

namespace clipfix::test {

// A damaged file, and what must be true of it whatever happens.
class DamagedFile {
  public:
    DamagedFile(std::filesystem::path path, ByteVector bytes)
        : path_(std::move(path)), bytes_(std::move(bytes)) {
        WriteFile(path_, bytes_);
        std::filesystem::last_write_time(
            path_, std::filesystem::last_write_time(path_) - std::chrono::hours(1000));
        written_ = std::filesystem::last_write_time(path_);
    }
    ~DamagedFile() {
        EXPECT_TRUE(ReadFile(path_) == bytes_) << "the damaged file was changed";
        EXPECT_EQ(std::filesystem::last_write_time(path_), written_);
    }
    DamagedFile(const DamagedFile&) = delete;
    DamagedFile& operator=(const DamagedFile&) = delete;

    [[nodiscard]] std::string Path() const { return path_.string(); }

  private:
    std::filesystem::path path_;
    ByteVector bytes_;
    std::filesystem::file_time_type written_;
};

// Runs the program.
inline ProcessResult Clipfix(std::vector<std::string> arguments,
                             const ProcessOptions& options = {}) {
    arguments.insert(arguments.begin(), CLIPFIX_PROGRAM);
    return RunProcess(arguments, options);
}

// Everything in a folder, hidden names included.
inline std::set<std::string> Names(const std::filesystem::path& folder) {
    std::set<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(folder)) {
        names.insert(entry.path().filename().string());
    }
    return names;
}

// One sentence, the status, and nothing new in the folder.
inline void ExpectRefusal(const TempFolder& folder, const std::vector<std::string>& arguments,
                          int status, const std::string& words) {
    const auto before = Names(folder.Path());
    const auto run = Clipfix(arguments);
    EXPECT_EQ(run.status, status) << run.err;
    EXPECT_EQ(std::count(run.err.begin(), run.err.end(), '\n'), 1) << run.err;
    EXPECT_NE(run.err.find(words), std::string::npos) << run.err;
    EXPECT_TRUE(run.out.empty()) << run.out;
    EXPECT_EQ(Names(folder.Path()), before);
}

}  // namespace clipfix::test
