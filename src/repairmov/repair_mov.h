#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "atoms/creation_request.h"
#include "job/state/job_control.h"
#include "job/state/job_front_end.h"
#include "moviefile/movie_file.h"
#include "platform/file.h"
#include "platform/unreadable_ranges.h"
#include "repairmov/sample.h"

namespace clipfix {

struct MovEngineOptions {
    // How many threads look for AAC frames. 0: as many as the machine has processors. 1: none but
    // the caller's. The result is the same for every number.
    unsigned probeThreads = 0;
};

// What a job found, for a report.
struct MovResults {
    std::uint64_t videoChunks = 0;
    std::uint64_t audioChunks = 0;
    // As the tables of the repaired movie count them: pictures, AAC frames, PCM samples.
    std::uint64_t videoSamples = 0;
    std::uint64_t audioSamples = 0;
    std::uint64_t bytesRead = 0;  // of the damaged file, from its start
    std::string videoFormat;      // the coder's four-character code, or empty
    std::string audioFormat;
};

// One chunk that the scan took.
struct FoundChunk {
    SampleName name = SampleName::Avc1;
    std::uint64_t offset = 0;   // in the damaged file, in bytes
    std::uint64_t bytes = 0;    // of its records; between AAC frames there may be others
    std::uint64_t records = 0;  // as found
    std::uint64_t samples = 0;  // as the repaired movie counts them
};

// The repair of one damaged QuickTime or MP4 movie. The damaged file is read as a flat run of
// bytes, whatever structure it has left. Chains of NAL units that fit the reference's parameter
// sets are video; what lies between two chains is sound. What was found is copied, in file order,
// into a new movie whose tables are made from those of the reference.
//
// An object serves one job, on one thread. It reports by the job's state and front end alone, and
// it lets no exception out.
class CRepairMOV {
  public:
    // To be made before the reference's structure is read: it clears what earlier jobs left in the
    // state, the coder formats among it. What is handed over must outlive the object.
    CRepairMOV(JobContext job, GFile& reference, MovEngineOptions options = {});
    CRepairMOV(const CRepairMOV&) = delete;
    CRepairMOV& operator=(const CRepairMOV&) = delete;
    ~CRepairMOV();

    // Scans the file that g_strCorruptPath names. Nothing is found when the reference's video is
    // of another kind than H.264 and H.265.
    void FindSamples();

    // The chunks that FindSamples found, in the order of the output. Only before the next call.
    [[nodiscard]] std::vector<FoundChunk> ListChunks() const;

    // Writes what FindSamples found to a new file at `outputPath`, from the file at `inputPath`.
    // Where nothing was found it says so in a message, sets g_bJobFailed and leaves an empty file.
    void WriteRepairedFile(const std::string& outputPath, const std::string& inputPath);

    // What the job found. Complete after WriteRepairedFile; before that the counts of samples are
    // those of ListChunks.
    [[nodiscard]] const MovResults& Results() const { return results_; }

  private:
    struct Found;

    void LocateDataForks();
    void CountChunks();
    void WriteDataForks(Result<platform::File>& output, const platform::File* plainInput,
                        const platform::ReadableFile& input);
    void ReportNothingFound();
    void FillRequests(const std::vector<std::uint64_t>& offsets);
    void NoteUnreadable(const platform::UnreadableRanges& more);
    void EndWriting(std::unique_ptr<CMoov> moov);

    JobContext job_;
    GFile& reference_;
    MovEngineOptions options_;
    std::unique_ptr<Found> found_;  // null until a scan could start
    MovResults results_;
};

// A place for a variant of the engine for one make of camera. It adds nothing: files of that make
// are repaired like all others.
class CRepair_Canon : public CRepairMOV {
  public:
    using CRepairMOV::CRepairMOV;
};

}  // namespace clipfix
