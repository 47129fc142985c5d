#pragma once

#include <cstdint>
#include <filesystem>

#include "support/temp_folder.h"

namespace clipfix::test {

// A file system of the test's own, in memory, of a given size; unmounted at the end. Only root can
// make one: a test that finds IsMounted() false passes itself over, and says so.
class SmallFileSystem {
  public:
    explicit SmallFileSystem(std::uint64_t bytes);
    SmallFileSystem(const SmallFileSystem&) = delete;
    SmallFileSystem& operator=(const SmallFileSystem&) = delete;
    ~SmallFileSystem();

    [[nodiscard]] bool IsMounted() const { return isMounted_; }
    [[nodiscard]] const std::filesystem::path& Path() const { return folder_.Path(); }
    [[nodiscard]] std::filesystem::path operator/(const std::string& name) const {
        return folder_ / name;
    }

  private:
    TempFolder folder_;
    bool isMounted_ = false;
};

}  // namespace clipfix::test
