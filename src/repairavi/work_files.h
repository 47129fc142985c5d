#pragma once

#include <filesystem>
#include <optional>

#include "job/state/job_state.h"
#include "platform/file.h"

namespace clipfix {

// The four files of an AVI job. A file that could not be opened or made is nothing.
struct WorkFiles {
    std::optional<platform::File> g_hAviCorrupt;   // the damaged file, only ever read
    std::optional<platform::File> g_hAviRepaired;  // the result
    std::optional<platform::File> g_hAviIndex;     // records of the new `idx1` while it grows
    std::optional<platform::File> g_hAviThumb;     // a picture found near the file's head

    // Opens the damaged file (g_strCorruptCopy), forms the paths of the three others below
    // `workFolder`, which is made if it does not exist, and makes them anew, in this order. The
    // damaged file is never one of the three: one that stands under such a name is not touched.
    void OpenAll(JobState& state, const std::filesystem::path& workFolder);
    // Only the damaged file, for a pass that writes nothing.
    void OpenDamaged(const JobState& state);

    // The way out of every job that leaves nothing: closes all four, and deletes the three.
    void CleanUp(const JobState& state);

    // The way out of a finished job: closes the damaged, the repaired and the index file, and
    // deletes the index file. The thumbnail file stays open and in place.
    void Finish(const JobState& state);

    // Closes and deletes the index and the thumbnail file, where they are open.
    void DropIndexAndThumbnail(const JobState& state);

  private:
    void MakeFolder(const std::filesystem::path& workFolder, JobState& state);
    [[nodiscard]] std::optional<platform::File> Make(const std::string& path, JobState& state);
};

}  // namespace clipfix
