#pragma once

#include <filesystem>
#include <string>

#include "base/bytes.h"

namespace clipfix::test {

// A folder of the test's own, removed with all that is in it at the end.
class TempFolder {
  public:
    TempFolder();
    // Makes the folder below `parent`, for example on a small file system.
    explicit TempFolder(const std::filesystem::path& parent);
    TempFolder(const TempFolder&) = delete;
    TempFolder& operator=(const TempFolder&) = delete;
    ~TempFolder();

    [[nodiscard]] const std::filesystem::path& Path() const { return path_; }
    [[nodiscard]] std::filesystem::path operator/(const std::string& name) const {
        return path_ / name;
    }

  private:
    std::filesystem::path path_;
};

// Whole files; a failure ends the test program with a clear message.
void WriteFile(const std::filesystem::path& path, ByteView bytes);
[[nodiscard]] ByteVector ReadFile(const std::filesystem::path& path);

}  // namespace clipfix::test
