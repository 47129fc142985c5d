#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "base/bytes.h"
#include "job/state/job_control.h"
#include "job/state/job_state.h"
#include "repairavi/repair_avi.h"
#include "support/avi_builder.h"
#include "support/random.h"
#include "support/silent_front_end.h"
#include "support/temp_folder.h"

namespace clipfix::test {

// A front end of which an AVI engine needs only the progress message.
class ProgressFrontEnd final : public SilentFrontEnd {
  public:
    explicit ProgressFrontEnd(JobState& state) : state_(&state) {}

    // The value of g_nAviPercent at each message.
    std::vector<int> percents;
    // Called at each message.
    std::function<void()> onProgress;

    void SendAviProgress() override {
        percents.push_back(state_->g_nAviPercent);
        if (onProgress) {
            onProgress();
        }
    }

  private:
    JobState* state_;
};

// One AVI job in a folder of its own, ready to run.
struct AviJob {
    // `name` is the damaged file's; its last letter decides about the thumbnail.
    explicit AviJob(ByteView damaged, const std::string& name = "damaged.avi")
        : frontEnd(state), engine({state, control, frontEnd}, folder / "$tp") {
        WriteFile(folder / name, damaged);
        state.g_strCorruptCopy = (folder / name).string();
        state.g_bAviContinue = 1;
    }

    int Run() { return engine.Repair(); }

    [[nodiscard]] bool Exists(const std::string& name) const {
        return std::filesystem::exists(folder / "$tp" / name);
    }
    // The repaired file; the test program ends when there is none.
    [[nodiscard]] ByteVector Output() const { return ReadFile(folder / "$tp" / "Repaired.avi"); }
    [[nodiscard]] ByteVector Thumbnail() const { return ReadFile(folder / "$tp" / "$tmp$.bmp"); }

    TempFolder folder;
    JobState state;
    JobControl control{state};
    ProgressFrontEnd frontEnd;
    CRepairAVI engine;
};

// What the repair of these bytes gives; nothing when the engine gave up.
[[nodiscard]] inline std::optional<ByteVector> Repaired(ByteView damaged) {
    AviJob job(damaged);
    if (job.Run() != 1) {
        return std::nullopt;
    }
    return job.Output();
}

// What an intact file is to become: the counts of the chunks that were taken in its heads, sizes as
// they are, and a fresh index behind the data. Worked out from the pieces, not by the engine.
[[nodiscard]] inline ByteVector WithFreshCounts(AviFile file) {
    file.withIndex = true;
    file.behind.clear();
    std::uint32_t sounds = 0;
    for (const auto& chunk : file.chunks) {
        if (chunk.id.substr(2) == "wb") {
            ++sounds;
        }
    }
    const auto pictures = static_cast<std::uint32_t>(file.chunks.size()) - sounds;
    file.mainHeader.dwTotalFrames = pictures;
    file.mainHeader.dwStreams = static_cast<std::uint32_t>(file.streamLists.size());
    ByteVector bytes = file.Bytes();
    OverwriteLittle32(bytes, 140, pictures);
    const std::size_t audio = FindText(bytes, "auds", 176);
    const std::size_t movie = FindText(bytes, "movi") - 8;
    if (audio < movie) {
        OverwriteLittle32(bytes, audio + 32, sounds);
    }
    // The main list is taken to run up to the data, whatever stands between.
    OverwriteLittle32(bytes, 16, static_cast<std::uint32_t>(movie - 20));
    return bytes;
}

// Two streams, with nothing in the main header that the engine would repair.
[[nodiscard]] inline AviFile SoundFile(std::vector<AviDataChunk> chunks) {
    AviFile file;
    file.mainHeader.dwFlags = 0x910;
    file.chunks = std::move(chunks);
    return file;
}

// Two streams of three chunks, and where the list of the chunks begins in it.
[[nodiscard]] inline AviFile UsualFile() {
    return SoundFile({AviPicture(20, 1), AviPicture(31, 2), AviSound(8, 3)});
}
inline constexpr std::size_t kMovieList = 312;

// A code of four zero bytes.
inline const std::string kNone(4, '\0');

// A chunk's head is looked for behind its two digits, and a buffer that begins at the second digit
// or at the tag does not show both. Refills come by themselves at offsets 1, 333334, 666667...
[[nodiscard]] inline bool HeadLiesAcrossARefill(std::size_t start) {
    return start % 333333 == 0 || start % 333333 == 333332;
}

}  // namespace clipfix::test
