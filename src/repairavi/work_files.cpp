#include "repairavi/work_files.h"

#include <string>
#include <system_error>
#include <utility>

#include "job/state/job_paths.h"
#include "platform/folders.h"

namespace clipfix {

namespace {

void NoteFailure(JobState& state, const Error& error) {
    if (state.writeFailed == 0) {
        state.writeFailure = error.text;
        state.writeFailed = 1;
    }
}

// Only what was made here is deleted: a file that was not opened is somebody else's.
void CloseAndDelete(std::optional<platform::File>& file, const std::string& path) {
    if (file) {
        file.reset();
        std::error_code ignored;
        std::filesystem::remove(path, ignored);
    }
}

}  // namespace

void WorkFiles::OpenAll(JobState& state, const std::filesystem::path& workFolder) {
    state.g_strAviRepairedPath = (workFolder / kRepairedAviName).string();
    state.g_strAviIndexPath = (workFolder / kAviIndexName).string();
    state.g_strAviThumbPath = (workFolder / kAviThumbName).string();
    MakeFolder(workFolder, state);
    OpenDamaged(state);
    g_hAviRepaired = Make(state.g_strAviRepairedPath, state);
    g_hAviIndex = Make(state.g_strAviIndexPath, state);
    g_hAviThumb = Make(state.g_strAviThumbPath, state);
}

void WorkFiles::OpenDamaged(const JobState& state) {
    g_hAviCorrupt.reset();
    if (auto opened = platform::File::OpenForReading(state.g_strCorruptCopy)) {
        g_hAviCorrupt = std::move(opened).Value();
    }
}

void WorkFiles::CleanUp(const JobState& state) {
    g_hAviCorrupt.reset();
    CloseAndDelete(g_hAviRepaired, state.g_strAviRepairedPath);
    DropIndexAndThumbnail(state);
}

void WorkFiles::Finish(const JobState& state) {
    g_hAviCorrupt.reset();
    g_hAviRepaired.reset();
    CloseAndDelete(g_hAviIndex, state.g_strAviIndexPath);
}

void WorkFiles::DropIndexAndThumbnail(const JobState& state) {
    CloseAndDelete(g_hAviIndex, state.g_strAviIndexPath);
    CloseAndDelete(g_hAviThumb, state.g_strAviThumbPath);
}

void WorkFiles::MakeFolder(const std::filesystem::path& workFolder, JobState& state) {
    const auto made = platform::MakeFolder(workFolder);
    if (!made) {
        NoteFailure(state, made.Failure());
    } else if (made.Value()) {
        platform::SetHidden(workFolder);
    }
}

std::optional<platform::File> WorkFiles::Make(const std::string& path, JobState& state) {
    std::error_code absent;
    if (std::filesystem::equivalent(path, state.g_strCorruptCopy, absent)) {
        NoteFailure(state,
                    Error{ErrorKind::WriteFailed, "'" + path + "' is the damaged file itself", {}});
        return std::nullopt;
    }
    auto made = platform::File::Create(path, platform::File::Existing::Replace);
    if (!made) {
        NoteFailure(state, made.Failure());
        return std::nullopt;
    }
    platform::SetHidden(path);
    return std::move(made).Value();
}

}  // namespace clipfix
