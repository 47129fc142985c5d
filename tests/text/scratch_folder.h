#pragma once

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <string_view>
#include <system_error>

namespace clipfix {

// A new folder of its own, taken away with all it holds when the test ends.
class ScratchFolder {
  public:
    ScratchFolder() {
        std::string form = (std::filesystem::temp_directory_path() / "clipfix-XXXXXX").string();
        path_ = mkdtemp(form.data()) != nullptr ? form : std::string();
    }
    ~ScratchFolder() {
        std::error_code error;
        std::filesystem::remove_all(path_, error);
    }
    ScratchFolder(const ScratchFolder&) = delete;
    ScratchFolder& operator=(const ScratchFolder&) = delete;

    [[nodiscard]] std::filesystem::path operator/(std::string_view name) const {
        return path_ / std::string(name);
    }
    [[nodiscard]] const std::filesystem::path& Path() const { return path_; }

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
    std::filesystem::path path_;
};

}  // namespace clipfix
