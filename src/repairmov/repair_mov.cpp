#include "repairmov/repair_mov.h"

#include <algorithm>
#include <new>
#include <thread>
#include <utility>

#include "atoms/kind_tags.h"
#include "job/state/job_paths.h"
#include "platform/folders.h"
#include "repairmov/fork_locator.h"
#include "repairmov/movie_writer.h"

namespace clipfix {

namespace {

// More threads than this are not worth their memory: what is between them is one disk.
constexpr unsigned kMostThreads = 16;

// A file that is not there: of no bytes.
class NoFile final : public platform::ReadableFile {
  public:
    [[nodiscard]] Result<std::size_t> ReadAt(std::uint64_t /*offset*/,
                                             ByteSpan /*out*/) const override {
        return std::size_t{0};
    }
    [[nodiscard]] std::uint64_t Size() const override { return 0; }
};

// Four-character code of a coder format, as sample descriptions have it.
std::string CodeOf(std::string_view format) {
    for (const auto& [tag, code] :
         {std::pair{kAvc1VideoCoderFormat, "avc1"}, std::pair{kHvc1VideoCoderFormat, "hvc1"},
          std::pair{kMp4aAudioCoderFormat, "mp4a"}, std::pair{kSowtAudioCoderFormat, "sowt"},
          std::pair{kTwosAudioCoderFormat, "twos"}}) {
        if (SameTag(format, tag)) {
            return code;
        }
    }
    return {};
}

unsigned ThreadsFor(unsigned wanted) {
    const unsigned threads = wanted != 0 ? wanted : std::thread::hardware_concurrency();
    return std::clamp(threads, 1U, kMostThreads);
}

FoundChunk DescribeChunk(const Chunk& chunk) {
    constexpr std::uint32_t kPcmSampleBytes = 4;
    FoundChunk made;
    made.name = chunk.Name();
    made.offset = chunk.samples.front().offset;
    made.records = chunk.recordCount;
    for (const CSample& sample : chunk.samples) {
        made.bytes += sample.size;
        made.samples += sample.isOutputSample ? 1 : 0;
    }
    if (made.name == SampleName::Sowt) {
        made.samples = static_cast<std::uint32_t>(made.bytes / kPcmSampleBytes);
    }
    return made;
}

}  // namespace

// What a scan leaves for the writer. The lists of the video and sound records are the chunks
// themselves.
struct CRepairMOV::Found {
    ChunkList chunks;
    CAtomCreationRequest videoRequest;
    CAtomCreationRequest audioRequest;
    platform::UnreadableRanges unreadable;
};

CRepairMOV::CRepairMOV(JobContext job, GFile& reference, MovEngineOptions options)
    : job_(job), reference_(reference), options_(options) {
    JobState& state = job_.state;
    state.g_bJobFailed = 0;
    state.g_nMovPercent = 0;
    state.g_liOutputSize = 0;
    state.g_ullCheckedSize = 0;
    state.g_ullCheckedPos = 0;
    state.g_strVideoCoderFormat.clear();
    state.g_strAudioCoderFormat.clear();
    state.g_strPlayerArgs.clear();
    state.bytesUnreadable = 0;
    state.writeFailed = 0;
    state.writeFailure.clear();
}

CRepairMOV::~CRepairMOV() = default;

void CRepairMOV::FindSamples() {
    const std::string& coder = job_.state.g_strVideoCoderFormat;
    if (SameTag(coder, kAvc1VideoCoderFormat) || SameTag(coder, kHvc1VideoCoderFormat)) {
        LocateDataForks();
    }
}

void CRepairMOV::LocateDataForks() {
    JobState& state = job_.state;
    if (!job_.control.KeepGoing(JobControl::Work::MovEngine)) {
        return;
    }
    const auto file = platform::File::OpenForReading(state.g_strCorruptPath);
    if (!file) {
        return;  // nothing is found, and the writer says so
    }
    found_ = std::make_unique<Found>();
    auto sets = FindParameterSets(reference_, state);
    if (!sets) {
        return;
    }
    ScanSettings settings;
    settings.parameterSets = std::move(*sets);
    settings.nalLengthSize = reference_.GetNalLengthSize();
    settings.audioCoderFormat = state.g_strAudioCoderFormat;
    settings.probeThreads = ThreadsFor(options_.probeThreads);
    if (const auto info = reference_.GetAudioSpecificInfo(); info && info->bytes != nullptr) {
        settings.audioSpecificInfo = *info->bytes;
    }
    ForkLocator locator(job_, file.Value(), settings);
    const bool isWhole = locator.Run();
    found_->unreadable = locator.Unreadable();
    state.bytesUnreadable = found_->unreadable.TotalBytes();
    results_.bytesRead = locator.BytesScanned();
    found_->chunks = locator.Found().TakeChunks();
    if (!isWhole) {
        return;
    }
    found_->audioRequest.requestType = kAudioRequest;
    found_->videoRequest.requestType = kVideoRequest;
    found_->audioRequest.stscEntries = locator.Found().AudioRuns();
    found_->videoRequest.stscEntries = locator.Found().VideoRuns();
    CountChunks();
}

void CRepairMOV::CountChunks() {
    results_.videoFormat = CodeOf(job_.state.g_strVideoCoderFormat);
    results_.audioFormat = CodeOf(job_.state.g_strAudioCoderFormat);
    for (const FoundChunk& chunk : ListChunks()) {
        const bool isVideo = IsVideo(chunk.name);
        (isVideo ? results_.videoChunks : results_.audioChunks) += 1;
        (isVideo ? results_.videoSamples : results_.audioSamples) += chunk.samples;
    }
}

std::vector<FoundChunk> CRepairMOV::ListChunks() const {
    std::vector<FoundChunk> list;
    if (found_ != nullptr) {
        list.reserve(found_->chunks.size());
        std::transform(found_->chunks.begin(), found_->chunks.end(), std::back_inserter(list),
                       DescribeChunk);
    }
    return list;
}

void CRepairMOV::WriteRepairedFile(const std::string& outputPath, const std::string& inputPath) {
    JobState& state = job_.state;
    auto output = platform::File::Create(outputPath, platform::File::Existing::Replace);
    if (output) {
        platform::SetHidden(outputPath);
    }
    const auto input = platform::File::OpenForReading(inputPath);
    state.g_strPlayerArgs = outputPath + "$$" + state.g_strCorruptName + "$$" +
                            PreviewSizeText(input ? input.Value().Size() : 0) + "$$";
    const NoFile noFile;
    const platform::File* plainInput = input ? &input.Value() : nullptr;
    WriteDataForks(
        output, plainInput,
        plainInput != nullptr ? static_cast<const platform::ReadableFile&>(*plainInput) : noFile);
}

// Nothing was found: the engine's only message.
void CRepairMOV::ReportNothingFound() {
    constexpr std::size_t kTextUnits = 999;  // what the buffers of the two texts hold
    constexpr std::size_t kTitleUnits = 199;
    job_.state.g_nMessageKind = 4;
    const std::string text = FirstUnits(job_.frontEnd.Text("IDS_UNHEALTHY_1"), kTextUnits);
    const std::string title = FirstUnits(job_.frontEnd.Text("IDS_INFORMATION"), kTitleUnits);
    job_.frontEnd.RunMessageDialog(text, title, "Yes", "No");
    job_.state.g_bJobFailed = 1;
}

void CRepairMOV::WriteDataForks(Result<platform::File>& output, const platform::File* plainInput,
                                const platform::ReadableFile& input) {
    MovProgress progress(job_);
    if (!progress.MayGoOn()) {
        return;
    }
    if (found_ == nullptr || found_->chunks.empty()) {
        ReportNothingFound();
        return;
    }
    if (!output) {
        // A failed write is passed over, and here all of them fail.
        NoteWriteFailure(job_.state, output.Failure());
        EndWriting(nullptr);
        return;
    }
    // The one place of the writing where running out of memory is swallowed.
    try {
        DataForkWriter writer(job_, progress, plainInput, input, output.Value());
        const bool isWhole = writer.CopyChunks(found_->chunks);
        NoteUnreadable(writer.Unreadable());
        if (!isWhole || !progress.MayGoOn()) {
            return;
        }
        FillRequests(writer.Offsets());
        EndWriting(WriteMovieAtoms(job_, reference_, found_->videoRequest, found_->audioRequest,
                                   output.Value()));
    } catch (const std::bad_alloc&) {
        NoteWriteFailure(job_.state, {ErrorKind::NoSpace, "the memory does not suffice", {}});
    }
}

// The records are not needed any more once the tables are made of them; they go before the atoms
// are built, which take as much again.
void CRepairMOV::FillRequests(const std::vector<std::uint64_t>& offsets) {
    CAtomCreationRequest& video = found_->videoRequest;
    CAtomCreationRequest& audio = found_->audioRequest;
    for (std::size_t i = 0; i < offsets.size(); ++i) {
        const bool isVideo = IsVideo(found_->chunks[i].Name());
        (isVideo ? video : audio).stcoEntries.push_back(offsets[i]);
    }
    CollectSampleSizes(found_->chunks, video.stszEntries, audio.stszEntries);
    found_->chunks.clear();
    audio.timescale = reference_.GetAudioTimescale();
    audio.sampleRate = reference_.GetAudioSampleRate();
    video.timescale = reference_.GetVideoTimescale();
    video.sampleRate = reference_.GetVideoSampleRate();
}

void CRepairMOV::NoteUnreadable(const platform::UnreadableRanges& more) {
    for (const auto& range : more.List()) {
        found_->unreadable.Add(range.offset, range.length);
    }
    job_.state.bytesUnreadable = found_->unreadable.TotalBytes();
}

void CRepairMOV::EndWriting(std::unique_ptr<CMoov> moov) {
    JobState& state = job_.state;
    state.g_strPlayerArgs +=
        CMoov::PlayerArgsSuffix(state.g_strVideoCoderFormat, state.g_strAudioCoderFormat);
    if (moov != nullptr) {
        const CTrak* video = moov->GetTrack(kVideoTrack);
        const CTrak* audio = moov->GetTrack(kAudioTrack);
        results_.videoSamples = video != nullptr ? video->sampleCount : 0;
        results_.audioSamples = audio != nullptr ? audio->sampleCount : 0;
    }
    found_.reset();
}

}  // namespace clipfix
