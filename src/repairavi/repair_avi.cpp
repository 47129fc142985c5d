#include "repairavi/repair_avi.h"

#include <algorithm>
#include <utility>

#include "platform/window_reader.h"
#include "repairavi/finishing.h"
#include "repairavi/scan.h"

namespace clipfix {

namespace {

// A file of this many bytes or fewer is refused.
constexpr std::uint64_t kTooSmall = 100;

}  // namespace

CRepairAVI::CRepairAVI(const JobContext& context, std::filesystem::path workFolder)
    : job_(context), workFolder_(std::move(workFolder)) {
    job_.state.g_nAviPercent = 0;
}

int CRepairAVI::Repair() {
    ClearState();
    files_.OpenAll(job_.state, workFolder_);
    const platform::File* damaged = files_.g_hAviCorrupt ? &files_.g_hAviCorrupt.value() : nullptr;
    return RunJob(damaged, damaged);
}

int CRepairAVI::ListChunks(const AviChunkListener& onChunk) {
    ClearState();
    files_.OpenDamaged(job_.state);
    const platform::File* damaged = files_.g_hAviCorrupt ? &files_.g_hAviCorrupt.value() : nullptr;
    return RunJob(damaged, damaged, &onChunk);
}

int CRepairAVI::RepairFrom(const platform::ReadableFile* damaged) {
    ClearState();
    files_.OpenAll(job_.state, workFolder_);
    return RunJob(damaged, nullptr);
}

// 1 set-up. 2 the pass over the damaged file. 3 the finishing steps, or the clean-up.
int CRepairAVI::RunJob(const platform::ReadableFile* damaged, const platform::File* damagedFile,
                       const AviChunkListener* onChunk) {
    if (damaged == nullptr || damaged->Size() <= kTooSmall) {
        return GiveUp();
    }
    if (damagedFile != nullptr) {
        damagedFile->ExpectSequentialReads();
    }
    switch (MakePass(*damaged, damagedFile, onChunk)) {
        case ScanEnd::Finished:
            files_.Finish(job_.state);
            return 1;
        case ScanEnd::GaveUp:
            return GiveUp();
        case ScanEnd::StoodStill:
            WaitForCancel();
            break;
        case ScanEnd::Cancelled:
            break;
    }
    // The finishing steps of a cancelled job find no file; only what they count is left to do.
    files_.CleanUp(job_.state);
    job_.state.g_ullAviRiffBody += std::uint64_t{IndexBodySize(job_.state)} + 8;
    return 1;
}

// All that works on the files, perhaps on threads of its own, ends with it; then they can be
// closed.
ScanEnd CRepairAVI::MakePass(const platform::ReadableFile& damaged,
                             const platform::File* damagedFile, const AviChunkListener* onChunk) {
    platform::WindowReader reader(damaged);
    platform::Prefetch prefetch(damaged);
    ScanBuffer sBuffer(reader, &prefetch);
    sBuffer.Refill(0);
    RepairedFile repaired(job_.state, files_.g_hAviRepaired, damagedFile, reader);
    IndexFile index(files_.g_hAviIndex, repaired);
    PercentMeter percent(job_, damaged.Size(), bytesScanned_, onPercentSent_);
    Pass pass(job_, damaged.Size(), sBuffer, repaired, index, files_.g_hAviThumb, percent);
    pass.onChunk = onChunk;
    const ScanEnd end = ScanDamagedFile(pass);
    bytesScanned_ = std::min(pass.ullOffset, pass.fileSize);
    if (end == ScanEnd::Finished) {
        FinishRepairedFile(pass);
    }
    job_.state.bytesUnreadable = reader.Unreadable().TotalBytes();
    return end;
}

int CRepairAVI::GiveUp() {
    files_.CleanUp(job_.state);
    return 0;
}

void CRepairAVI::CloseWorkFiles() {
    files_.DropIndexAndThumbnail(job_.state);
}

std::string CRepairAVI::StandstillReason() {
    return "a stream header of the file leads in a circle";
}

void CRepairAVI::WaitForCancel() {
    standsStill_ = true;
    if (onStandstill_) {
        onStandstill_();
    }
    job_.control.WaitUntil([this] { return job_.state.g_bAviContinue == 0; });
}

void CRepairAVI::ClearState() {
    JobState& state = job_.state;
    state.g_nAviVideoChunks = 0;
    state.g_nAviAudioChunks = 0;
    state.g_dwAviMicroSecPerFrame = 0;
    state.g_szAviCodec.clear();
    state.g_ullAviRiffBody = 0;
    state.bytesUnreadable = 0;
    state.writeFailed = 0;
    state.writeFailure.clear();
    standsStill_ = false;
    bytesScanned_ = 0;
}

}  // namespace clipfix
