#pragma once

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <string_view>

#include "support/temp_folder.h"

namespace clipfix {

// A folder of the test's own with small text files in it.
class ScratchFolder {
  public:
    [[nodiscard]] std::filesystem::path operator/(std::string_view name) const {
        return folder_.Path() / std::string(name);
    }
    [[nodiscard]] const std::filesystem::path& Path() const { return folder_.Path(); }

    std::filesystem::path Put(std::string_view name, std::string_view text) const {
        const std::filesystem::path file = *this / name;
        std::filesystem::create_directories(file.parent_path());
        std::ofstream(file, std::ios::binary) << text;
        return file;
    }
    [[nodiscard]] std::string Get(std::string_view name) const {
        std::ifstream stream(*this / name, std::ios::binary);
        return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
    }

  private:
    test::TempFolder folder_;
};

}  // namespace clipfix
