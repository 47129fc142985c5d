#include "support/temp_folder.h"

#include <cstdlib>
#include <fstream>
#include <iostream>
#include <iterator>
#include <system_error>

namespace clipfix::test {

namespace {

[[noreturn]] void Stop(const std::string& what, const std::filesystem::path& path) {
    std::cerr << "test support: " << what << ' ' << path << '\n';
    std::abort();
}

}  // namespace

TempFolder::TempFolder() : TempFolder(std::filesystem::temp_directory_path()) {}

TempFolder::TempFolder(const std::filesystem::path& parent) {
    std::string pattern = (parent / "clipfix-test-XXXXXX").string();
    if (::mkdtemp(pattern.data()) == nullptr) {
        Stop("cannot make a folder in", parent);
    }
    path_ = pattern;
}

TempFolder::~TempFolder() {
    std::error_code ignored;
    std::filesystem::permissions(path_, std::filesystem::perms::owner_all, ignored);
    std::filesystem::remove_all(path_, ignored);
}

void WriteFile(const std::filesystem::path& path, ByteView bytes) {
    std::ofstream out(path, std::ios::binary);
    const std::string letters(bytes.begin(), bytes.end());
    out.write(letters.data(), static_cast<std::streamsize>(letters.size()));
    out.close();
    if (!out) {
        Stop("cannot write", path);
    }
}

ByteVector ReadFile(const std::filesystem::path& path) {
    std::ifstream in(path, std::ios::binary);
    if (!in) {
        Stop("cannot read", path);
    }
    ByteVector bytes(static_cast<std::size_t>(std::filesystem::file_size(path)));
    in.read(reinterpret_cast<char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    bytes.resize(static_cast<std::size_t>(in.gcount()));
    return bytes;
}

}  // namespace clipfix::test
