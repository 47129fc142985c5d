#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "atoms/creation_request.h"
#include "job/state/job_front_end.h"
#include "moviefile/movie_file.h"
#include "platform/file.h"
#include "platform/window_reader.h"
#include "repairmov/mov_progress.h"
#include "repairmov/sample.h"

namespace clipfix {

// Sizes of the samples of each track, in the order of the chunks. Video that is no sample adds its
// bytes to the next video sample, across chunks; what is left at the end is in no sample. PCM has
// no sizes.
void CollectSampleSizes(const ChunkList& chunks, std::vector<std::uint32_t>& video,
                        std::vector<std::uint32_t>& audio);

// Size text of the damaged file for the preview player: mebibytes as a 32-bit float, "%0.2f MB",
// or from 1024 of them on "%0.2f GB".
[[nodiscard]] std::string PreviewSizeText(std::uint64_t bytes);

// Copies the records of chunks to the output, one behind the other from where the head of its
// media data ends.
//
// Nothing hangs on one write: a record that cannot be written is passed over, and the next one
// goes where the file really ends, so that the offsets stay true to the file. That is settled. The
// failure is noted in the job's state.
class DataForkWriter {
  public:
    // Bytes of the head of the media data, with which the output begins.
    static constexpr std::uint64_t kHeadSize = 16;

    // `file` is `input` when the bytes come from a plain file, else null. What is handed over must
    // outlive the object.
    DataForkWriter(JobContext job, MovProgress& progress, const platform::File* file,
                   const platform::ReadableFile& input, platform::File& output);

    // Copies all. False when the work is to be left.
    [[nodiscard]] bool CopyChunks(const ChunkList& chunks);

    // Offset in the output of each chunk.
    [[nodiscard]] const std::vector<std::uint64_t>& Offsets() const { return offsets_; }
    [[nodiscard]] const platform::UnreadableRanges& Unreadable() const {
        return reader_.Unreadable();
    }

  private:
    enum class Outcome { Done, Left, Failed };

    [[nodiscard]] Outcome CopyInOneGo(const ChunkList& chunks, std::size_t& safeChunks);
    [[nodiscard]] Outcome CopyRecordByRecord(const ChunkList& chunks, std::size_t firstChunk);
    [[nodiscard]] Outcome CopyRecord(const CSample& record);
    void ShowPercent(std::size_t chunk, std::size_t chunkCount);
    void AskOutputSize();

    JobContext job_;
    MovProgress& progress_;
    const platform::File* file_;
    platform::WindowReader reader_;
    platform::File& output_;
    std::vector<std::uint64_t> offsets_;
    std::size_t shownChunks_ = 0;
};

// Notes in the job's state that the output could not be written whole. The first reason stays.
void NoteWriteFailure(JobState& state, const Error& error);

// Makes the movie's atoms from the reference's tree and the two requests, and writes them: the real
// head over the first bytes, the movie atom behind the data. Gives the new tree, or null when none
// could be made.
std::unique_ptr<CMoov> WriteMovieAtoms(JobContext job, GFile& reference,
                                       const CAtomCreationRequest& video,
                                       const CAtomCreationRequest& audio, platform::File& output);

}  // namespace clipfix
