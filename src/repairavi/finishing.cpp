#include "repairavi/finishing.h"

#include <algorithm>
#include <array>

namespace clipfix {

namespace {

bool StandsAt(ByteView bytes, std::size_t at, const FourLetters& letters) {
    const ByteView found = SubView(bytes, at, letters.size());
    return std::equal(found.begin(), found.end(), letters.begin(), letters.end());
}

// An `indx` chunk of a stream list, copied along, points into the damaged file (OpenDML AVI 1.02,
// 3.0). It becomes padding of the same size. Behind an `odml` nothing is touched any more.
void NeutraliseSuperIndexes(Pass& pass) {
    constexpr std::size_t kSearchEnd = 333329;
    const ByteVector sBuffer = pass.repaired.FirstBytes(ScanBuffer::kSize);
    for (std::size_t i = 0; i < std::min(kSearchEnd, sBuffer.size()); ++i) {
        if (StandsAt(sBuffer, i, indx_AVI)) {
            pass.repaired.Patch(i, JUNK_AVI);
        } else if (StandsAt(sBuffer, i, odml_AVI)) {
            break;
        }
    }
}

// The output's end is where its head says, also when nothing was written at all.
void AppendIndex(Pass& pass) {
    pass.repaired.MoveEnd(pass.job.state.g_ullAviRiffBody + 8);
    ByteVector sBuffer(ScanBuffer::kSize);
    std::uint64_t at = 0;
    while (const std::size_t got = pass.index.ReadAt(at, sBuffer)) {
        pass.job.control.WaitWhileSuspended(JobControl::Worker::Repair);
        pass.repaired.Append(SubView(sBuffer, 0, got));
        at += got;
    }
    pass.repaired.Finish();
}

void PatchNumber(Pass& pass, std::uint64_t at, std::uint32_t value) {
    std::array<std::uint8_t, 4> bytes{};
    StoreLittle32(bytes, 0, value);
    pass.repaired.Patch(at, bytes);
}

// The length of the first audio stream becomes the number of its chunks, whatever its rate and
// sample size; a second one keeps its old length. Both are meant.
void PatchAudioLength(Pass& pass) {
    constexpr std::size_t kSearchStart = 176;
    constexpr std::size_t kFoundBelow = 333323;
    constexpr std::size_t kLengthAt = 32;  // dwLength, from the word "auds"
    const ByteVector sBufferTemp = pass.repaired.FirstBytes(ScanBuffer::kSize);
    for (std::size_t i = kSearchStart; i < std::min(kFoundBelow, sBufferTemp.size()); ++i) {
        if (StandsAt(sBufferTemp, i, auds_AVI)) {
            PatchNumber(pass, i + kLengthAt, pass.job.state.g_nAviAudioChunks);
            break;
        }
    }
}

// Unconditional, and in this order: a job that opened no `movi` list writes over the RIFF size at
// the end, and one that wrote less than a head grows the file until the final cut.
void PatchHead(Pass& pass) {
    const JobState& state = pass.job.state;
    PatchNumber(pass, 4, static_cast<std::uint32_t>(state.g_ullAviRiffBody));
    PatchNumber(pass, 56, pass.nStreams);  // dwStreams
    PatchNumber(pass, 16, pass.dwHdrlBody);
    PatchNumber(pass, 48, state.g_nAviVideoChunks);   // dwTotalFrames
    PatchNumber(pass, 140, state.g_nAviVideoChunks);  // dwLength of the first stream
    PatchAudioLength(pass);
    PatchNumber(pass, pass.ullMoviListPos + 4, pass.dwMoviBody);
}

}  // namespace

std::uint32_t IndexBodySize(const JobState& state) {
    return 16 * state.g_nAviVideoChunks + 16 * state.g_nAviAudioChunks;
}

void FinishRepairedFile(Pass& pass) {
    JobState& state = pass.job.state;
    const std::uint32_t indexBody = IndexBodySize(state);
    NeutraliseSuperIndexes(pass);
    pass.index.Finish(indexBody);
    AppendIndex(pass);
    state.g_ullAviRiffBody += std::uint64_t{indexBody} + 8;
    PatchHead(pass);
    // The cut is at a 32-bit position, so an output that has grown past 4 GiB is cut far down.
    // That is meant.
    pass.repaired.SetEnd(static_cast<std::uint32_t>(state.g_ullAviRiffBody + 8));
}

}  // namespace clipfix
