#pragma once

#include <cstddef>
#include <filesystem>
#include <string>
#include <string_view>

namespace clipfix {

// A profile file is a small text file of sections and keys:
//
//     [Section]
//     KEY=value
//
// Sections and keys are found without regard to the case of their ASCII letters. Blanks around a
// section's name, a key and a value count for nothing, on both sides of a comparison. One pair of
// single or double quotation marks that encloses a whole value is dropped, which is how a value
// keeps blanks at its ends. Lines that begin with ';' are remarks. The text is UTF-8 with or
// without a byte order mark; lines end in LF or CR LF. Of two sections or keys of one name the
// first holds. The file's own name is found without regard to ASCII case as well.
//
// Nothing is kept between two calls: each opens the file, and an edit shows at once.

// The value of `key`, cut to `size` - 1 characters as counted in UTF-16 units (the place that a
// closing zero would take is not available). A missing file, section or key gives an empty text.
[[nodiscard]] std::string ReadProfileText(const std::filesystem::path& file,
                                          std::string_view section, std::string_view key,
                                          std::size_t size);

// Sets `key` to `value`, and makes the file and the section where they are missing. All other
// lines stay byte for byte. Answers false when nothing was written: a file without any write
// permission counts as read-only for everybody, an administrator included.
bool WriteProfileText(const std::filesystem::path& file, std::string_view section,
                      std::string_view key, std::string_view value);

// True when the file, its name taken without regard to ASCII case, can be opened for reading.
[[nodiscard]] bool ProfileFileOpens(const std::filesystem::path& file);

// `text` cut to at most `units` UTF-16 units, never inside a character. Bytes that are not UTF-8
// count one unit each.
[[nodiscard]] std::string_view CutToUtf16Units(std::string_view text, std::size_t units);

}  // namespace clipfix
