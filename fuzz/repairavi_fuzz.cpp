// Repairs any bytes as a damaged AVI. Where FE ED stands in the input, three more bytes are a count
// (big-endian) of filler bytes, so that a short input can be a file of several buffers.

#include <cstdlib>
#include <filesystem>
#include <string>
#include <system_error>

#include "fuzz_input.h"
#include "job/state/job_control.h"
#include "platform/file.h"
#include "repairavi/marker_search.h"
#include "repairavi/repair_avi.h"
#include "support/memory_file.h"
#include "support/silent_front_end.h"

namespace {

using namespace clipfix;
using fuzz::Demand;

ByteVector Expanded(ByteView input) {
    constexpr std::size_t kLargestFiller = 700'000;
    constexpr std::size_t kLargestFile = 3'000'000;
    ByteVector bytes;
    for (std::size_t at = 0; at < input.size(); ++at) {
        if (input[at] == 0xFE && ByteAt(input, at + 1) == 0xED && bytes.size() < kLargestFile) {
            const std::size_t count = ReadBig32(input, at + 1) & 0xFFFFFFU;
            bytes.insert(bytes.end(), count % kLargestFiller, std::uint8_t{0x80});
            at += 4;
        } else {
            bytes.push_back(input[at]);
        }
    }
    return bytes;
}

// A folder for the work files, removed at the end.
class WorkFolder {
  public:
    WorkFolder() {
        std::string pattern = (std::filesystem::temp_directory_path() / "avi-fuzz-XXXXXX").string();
        Demand(::mkdtemp(pattern.data()) != nullptr);
        path_ = pattern;
    }
    ~WorkFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
    }
    WorkFolder(const WorkFolder&) = delete;
    WorkFolder& operator=(const WorkFolder&) = delete;
    [[nodiscard]] std::filesystem::path Path() const { return path_ / "$tp"; }

  private:
    std::filesystem::path path_;
};

void CompareSearches(ByteView bytes) {
    const MarkerStops stops = MarkerStops::All();
    Demand(FindMarker(bytes, stops) == marker_search::FindBySixteen(bytes, stops));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const ByteVector damaged = Expanded({data, size});
    CompareSearches(damaged);
    const test::MemoryFile file(damaged);

    JobState state;
    JobControl control(state);
    test::SilentFrontEnd frontEnd;
    state.g_strCorruptCopy = "damaged.avi";
    state.g_bAviContinue = 1;
    static const WorkFolder folder;
    CRepairAVI engine({state, control, frontEnd}, folder.Path());
    engine.OnStandstill([&] { state.g_bAviContinue = 0; });
    int lastPercent = 0;
    engine.OnPercentSent([&](int percent) {
        Demand(percent > lastPercent && percent < 100);
        lastPercent = percent;
    });
    const int result = engine.RepairFrom(&file);
    Demand(result == 0 || result == 1);
    Demand(state.writeFailed == 0);

    const std::string& path = state.g_strAviRepairedPath;
    if (result == 0 || engine.StandsStill()) {
        Demand(!std::filesystem::exists(path));
        return 0;
    }
    // The file is as long as its own head says, as far as 32 bits tell.
    Demand(std::filesystem::file_size(path) ==
           static_cast<std::uint32_t>(state.g_ullAviRiffBody + 8));
    Demand(!std::filesystem::exists(state.g_strAviIndexPath));
    // No chunk is counted that the file has no room for, jumps into old contents aside.
    Demand(state.g_nAviVideoChunks + state.g_nAviAudioChunks <= damaged.size() / 4);
    return 0;
}
