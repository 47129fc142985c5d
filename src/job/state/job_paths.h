#pragma once

#include <filesystem>
#include <string>
#include <string_view>

#include "job/state/job_state.h"

namespace clipfix {

// The display form of a path: one of at least `limit` UTF-16 units is shortened to its first 30,
// "...", and its last 25; a shorter one stands whole. `path` is UTF-8; a byte that is no UTF-8
// counts as one unit and is kept.
[[nodiscard]] std::string DisplayPath(std::string_view path, std::size_t limit);

// The limit for the damaged file and for a destination, and the one for a reference.
inline constexpr std::size_t kDisplayLimit = 60;
inline constexpr std::size_t kReferenceDisplayLimit = 62;

// "Corrupted File: " or, in an AVI job, "Path: ", with the display form behind it.
[[nodiscard]] std::string CorruptedLabel(std::string_view path, bool movJob);
// "Healthy File: " with the display form behind it.
[[nodiscard]] std::string ReferenceLabel(std::string_view path);

// A text of the interface less what is above `units` UTF-16 units, as UTF-8.
[[nodiscard]] std::string FirstUnits(std::string_view text, std::size_t units);
[[nodiscard]] std::size_t CountUnits(std::string_view text);

// The extension of a path without its dot, in upper case (ASCII letters); empty when it has none.
[[nodiscard]] std::string UpperExtension(const std::string& path);

// The file name of a path without its folder.
[[nodiscard]] std::string FileName(const std::string& path);

// Notes the damaged file and the kind of job that its extension selects: "MOV" and "MP4" make a
// MOV job, everything else an AVI job, which may then go on. The contents take no part.
void ChooseCorruptFile(JobState& state, const std::string& path);

// Notes the healthy reference, which also becomes the file under structure check.
void ChooseReferenceFile(JobState& state, const std::string& path);

// Names below the work folder.
inline constexpr std::string_view kWorkFolderName = "$tp";
inline constexpr std::string_view kRepairedMovName = "Repaired.mov";
inline constexpr std::string_view kRepairedAviName = "Repaired.avi";
inline constexpr std::string_view kAviIndexName = "index";
inline constexpr std::string_view kAviThumbName = "$tmp$.bmp";

}  // namespace clipfix
