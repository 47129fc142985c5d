#include "repairmov/movie_writer.h"

#include <algorithm>
#include <cstdio>

#include "atoms/moov_sink.h"
#include "platform/range_copier.h"

namespace clipfix {

namespace {

// What is copied between two looks at pause and cancel, in bytes.
constexpr std::uint64_t kCopyStep = std::uint64_t{4} << 20U;
// What may have to be copied again, record by record, after a write that failed.
constexpr std::uint64_t kSafeEvery = std::uint64_t{64} << 20U;
constexpr std::uint64_t kMdatStart = 0;

}  // namespace

void CollectSampleSizes(const ChunkList& chunks, std::vector<std::uint32_t>& video,
                        std::vector<std::uint32_t>& audio) {
    std::uint32_t pendingBytes = 0;  // 32 bits, as all sizes of the tables
    for (const Chunk& chunk : chunks) {
        for (const CSample& sample : chunk.samples) {
            if (IsVideo(sample.name)) {
                pendingBytes += static_cast<std::uint32_t>(sample.size);
                if (sample.isOutputSample) {
                    video.push_back(std::exchange(pendingBytes, 0));
                }
            } else if (sample.name == SampleName::Aac) {
                audio.push_back(static_cast<std::uint32_t>(sample.size));
            }
        }
    }
}

std::string PreviewSizeText(std::uint64_t bytes) {
    constexpr float kBytesInMebibyte = 1048576.0F;
    constexpr float kMebibytesInGibibyte = 1024.0F;
    const float mebibytes = static_cast<float>(bytes) / kBytesInMebibyte;
    char text[64];
    if (mebibytes < kMebibytesInGibibyte) {
        std::snprintf(text, sizeof text, "%0.2f MB", static_cast<double>(mebibytes));
    } else {
        std::snprintf(text, sizeof text, "%0.2f GB",
                      static_cast<double>(mebibytes / kMebibytesInGibibyte));
    }
    return text;
}

void NoteWriteFailure(JobState& state, const Error& error) {
    if (state.writeFailed == 0) {
        state.writeFailure = error.text;
        state.writeFailed = 1;
    }
}

DataForkWriter::DataForkWriter(JobContext job, MovProgress& progress, const platform::File* file,
                               const platform::ReadableFile& input, platform::File& output)
    : job_(job), progress_(progress), file_(file), reader_(input), output_(output) {}

bool DataForkWriter::CopyChunks(const ChunkList& chunks) {
    const ByteVector empty(kHeadSize);
    if (const auto written = output_.WriteAt(kMdatStart, empty); !written) {
        NoteWriteFailure(job_.state, written.Failure());
    }
    AskOutputSize();
    progress_.Begin("Writing audio / video data forks..");
    std::size_t safeChunks = 0;
    const auto outcome =
        job_.state.writeFailed == 0 ? CopyInOneGo(chunks, safeChunks) : Outcome::Failed;
    if (outcome != Outcome::Failed) {
        return outcome == Outcome::Done;
    }
    return CopyRecordByRecord(chunks, safeChunks) == Outcome::Done;
}

// The plain way, as long as no write fails: records that follow one another in the damaged file are
// copied as one stretch. `safeChunks` counts the chunks that are known to be in the output.
DataForkWriter::Outcome DataForkWriter::CopyInOneGo(const ChunkList& chunks,
                                                    std::size_t& safeChunks) {
    platform::RangeCopier copier(file_, reader_, output_, kHeadSize);
    std::uint64_t gathered = 0;
    std::uint64_t safeEnd = kHeadSize;
    const auto finish = [&]() -> Outcome {
        gathered = 0;
        if (const auto done = copier.Finish(); !done) {
            NoteWriteFailure(job_.state, done.Failure());
            return Outcome::Failed;
        }
        job_.state.g_liOutputSize = static_cast<std::int64_t>(copier.End());
        return progress_.MayGoOn() ? Outcome::Done : Outcome::Left;
    };
    for (std::size_t i = 0; i < chunks.size(); ++i) {
        if (!progress_.MayGoOn()) {
            return Outcome::Left;
        }
        ShowPercent(i, chunks.size());
        offsets_.push_back(copier.End());
        for (const CSample& record : chunks[i].samples) {
            std::uint64_t from = record.offset;
            for (std::uint64_t left = record.CopiedBytes(); left > 0;) {
                const std::uint64_t step = std::min(left, kCopyStep - gathered);
                if (const auto done = copier.CopyRange(from, step); !done) {
                    NoteWriteFailure(job_.state, done.Failure());
                    return Outcome::Failed;
                }
                from += step;
                left -= step;
                gathered += step;
                if (gathered == kCopyStep) {
                    if (const Outcome done = finish(); done != Outcome::Done) {
                        return done;
                    }
                }
            }
        }
        if (copier.End() - safeEnd >= kSafeEvery) {
            if (const Outcome done = finish(); done != Outcome::Done) {
                return done;
            }
            safeChunks = i + 1;
            safeEnd = copier.End();
        }
    }
    const Outcome done = finish();
    AskOutputSize();
    return done;
}

// The way after a write has failed: what is not known to be in the output is cut away, and each
// record is written on its own where the file ends.
DataForkWriter::Outcome DataForkWriter::CopyRecordByRecord(const ChunkList& chunks,
                                                           std::size_t firstChunk) {
    if (offsets_.size() > firstChunk) {
        static_cast<void>(output_.SetEnd(offsets_[firstChunk]));
        offsets_.resize(firstChunk);
    }
    AskOutputSize();
    for (std::size_t i = firstChunk; i < chunks.size(); ++i) {
        if (!progress_.MayGoOn()) {
            return Outcome::Left;
        }
        ShowPercent(i, chunks.size());
        offsets_.push_back(static_cast<std::uint64_t>(job_.state.g_liOutputSize.load()));
        for (const CSample& record : chunks[i].samples) {
            if (CopyRecord(record) == Outcome::Left) {
                return Outcome::Left;
            }
        }
    }
    return Outcome::Done;
}

DataForkWriter::Outcome DataForkWriter::CopyRecord(const CSample& record) {
    ByteVector bytes(std::min<std::uint64_t>(record.CopiedBytes(), kCopyStep));
    for (std::uint64_t done = 0; done < record.CopiedBytes();) {
        if (!progress_.MayGoOn()) {
            return Outcome::Left;
        }
        bytes.resize(std::min<std::uint64_t>(bytes.size(), record.CopiedBytes() - done));
        static_cast<void>(reader_.Read(record.offset + done, bytes));
        const auto at = static_cast<std::uint64_t>(job_.state.g_liOutputSize.load());
        const auto written = output_.WriteAt(at, bytes);
        AskOutputSize();
        if (!written) {
            NoteWriteFailure(job_.state, written.Failure());
            return Outcome::Failed;
        }
        done += bytes.size();
    }
    return Outcome::Done;
}

// Chunks that are copied a second time were shown before.
void DataForkWriter::ShowPercent(std::size_t chunk, std::size_t chunkCount) {
    if (chunk < shownChunks_) {
        return;
    }
    shownChunks_ = chunk + 1;
    // In unsigned 32 bits: from some 43 million chunks on the product wraps. Settled.
    const std::uint32_t product = static_cast<std::uint32_t>(chunk) * 100U;
    progress_.Show(static_cast<int>(product / static_cast<std::uint32_t>(chunkCount)));
}

void DataForkWriter::AskOutputSize() {
    if (const auto size = output_.CurrentSize()) {
        job_.state.g_liOutputSize = static_cast<std::int64_t>(size.Value());
    }
}

std::unique_ptr<CMoov> WriteMovieAtoms(JobContext job, GFile& reference,
                                       const CAtomCreationRequest& video,
                                       const CAtomCreationRequest& audio, platform::File& output) {
    JobState& state = job.state;
    auto moov = reference.CreateMoov(video, audio);
    ByteVector head;
    AppendBig32(head, 1);  // a 64-bit size follows, also in a small movie
    AppendText(head, "mdat");
    AppendBig64(head, static_cast<std::uint64_t>(state.g_liOutputSize.load()));
    if (const auto written = output.WriteAt(kMdatStart, head); !written) {
        NoteWriteFailure(state, written.Failure());
    }
    if (moov == nullptr) {
        NoteWriteFailure(state, {ErrorKind::Unsupported,
                                 "the tables of the repaired movie do not fit into 32 bits",
                                 {}});
        return nullptr;
    }
    FileMoovSink sink(output);
    if (const auto written = moov->WriteMoov(sink); !written) {
        NoteWriteFailure(state, written.Failure());
    }
    if (const auto size = output.CurrentSize()) {
        state.g_liOutputSize = static_cast<std::int64_t>(size.Value());
    }
    return moov;
}

}  // namespace clipfix
