#pragma once

#include <cstdint>
#include <deque>
#include <optional>
#include <string_view>

#include "codec/block_test.h"
#include "job/state/job_front_end.h"
#include "moviefile/reference_check.h"
#include "platform/file.h"
#include "platform/prefetch.h"
#include "platform/unreadable_ranges.h"
#include "platform/window_reader.h"
#include "repairmov/aac_probe.h"
#include "repairmov/chunk_order.h"
#include "repairmov/head_reader.h"
#include "repairmov/mov_progress.h"
#include "repairmov/nal_run.h"
#include "repairmov/probe_pool.h"

namespace clipfix {

// What the scan takes from the reference.
struct ScanSettings {
    JobParameterSets parameterSets;
    std::uint32_t nalLengthSize = 0;  // bytes, 0 to 4
    std::string_view audioCoderFormat;
    ByteVector audioSpecificInfo;  // may be empty
    unsigned probeThreads = 1;
};

// Scans a damaged file for runs of NAL units, and takes the gaps between them as sound.
//
// Plan: 1 look for the first position at which a unit could start; the positions before it are no
// runs. 2 Follow the chain of units there; two or fewer are no run, and the search goes on one byte
// further. 3 A run stands: what lies between it and the run before it is sound. 4 Go on behind it.
//
// Gaps that may hold AAC are probed on other threads while the scan runs ahead. What they answer
// is put in its place in the order of the scan, so that the result is the same as that of a scan
// which waits for each answer.
class ForkLocator {
  public:
    // What is handed over must outlive the object.
    ForkLocator(JobContext job, const platform::ReadableFile& file, const ScanSettings& settings);

    // False when the work is to be left. Running out of memory ends the scan as the end of the
    // file does: what was found so far stands.
    [[nodiscard]] bool Run();

    [[nodiscard]] ChunkOrder& Found() { return order_; }
    [[nodiscard]] std::uint64_t BytesScanned() const;
    [[nodiscard]] platform::UnreadableRanges Unreadable() const;

  private:
    // Something found whose place in the order is known, and whose content may not be yet.
    struct Pending {
        enum class Kind { Run, AacGap, AacHead };
        Kind kind = Kind::Run;
        Chunk run;
        std::uint32_t sampleCount = 0;
    };

    [[nodiscard]] bool Scan();
    [[nodiscard]] ByteView BlockAt(std::uint64_t position);
    [[nodiscard]] bool SkipToCandidate();
    void ShowPercents(std::uint64_t from, std::uint64_t to);
    void TakeRun(NalRun run);
    void TakeGap(std::uint64_t offset, std::uint64_t length);
    void TakeAacGap(std::uint64_t offset, std::uint64_t length);
    void Place(Pending pending);
    void PlaceNext();
    void PlaceWhatIsReady();
    void PlaceAll();

    JobContext job_;
    const platform::ReadableFile& file_;
    const ScanSettings& settings_;
    MovProgress progress_;
    platform::WindowReader scanReader_;
    HeadReader heads_;
    platform::Prefetch prefetch_;
    BlockTest blockTest_;
    NalWalker walker_;
    AacProbe probe_;
    ProbePool pool_;

    std::uint64_t position_ = 0;
    // Of the last run; none before the first.
    std::optional<std::uint64_t> videoEnd_;
    std::uint64_t firstVideo_ = 0;
    bool askedHead_ = false;
    std::deque<Pending> pending_;
    ChunkOrder order_;
};

}  // namespace clipfix
