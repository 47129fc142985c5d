// Reads any bytes as a `moov`, asks the tree all there is to ask, rebuilds it for requests that
// follow the input, and writes it. Besides the absence of crashes, what must hold for every input:
// a kept track has its media, the count of tracks is that of the list, the sum of a table's
// children is back to zero, and the rebuilt movie's tracks are all of a known kind.

#include <cstdint>
#include <cstdlib>

#include "atoms/kind_tags.h"
#include "atoms/moov.h"

namespace {

using namespace clipfix;

void Demand(bool holds) {
    if (!holds) {
        std::abort();
    }
}

class CountingSink final : public MoovSink {
  public:
    Result<void> Append(ByteView bytes) override {
        bytes_ += bytes.size();
        return {};
    }
    Result<void> Flush() override { return {}; }
    [[nodiscard]] std::uint64_t Bytes() const { return bytes_; }

  private:
    std::uint64_t bytes_ = 0;
};

// The last byte of the input says how many samples and chunks the engine found.
CAtomCreationRequest Request(std::string_view type, std::uint32_t timescale, double rate,
                             std::uint8_t amount) {
    CAtomCreationRequest request;
    request.requestType = type;
    request.timescale = timescale;
    request.sampleRate = rate;
    request.stcoEntries.assign(amount & 15U, 16);
    request.stszEntries.assign(amount, 100);
    if ((amount & 16U) != 0) {
        request.stscEntries = std::make_shared<std::vector<CSampleToChunkEntery>>();
        request.stscEntries->emplace_back(1U, static_cast<std::uint32_t>(amount), 1U);
    }
    return request;
}

void AskEverything(const CMoov& moov) {
    (void)moov.GetSPS();
    (void)moov.GetPPS();
    (void)moov.GetVPS();
    (void)moov.GetAudioSpecificInfo();
    for (const auto& track : moov.tracks) {
        Demand(track->mdia != nullptr);
        if (const CStsd* description = track->SampleDescription()) {
            Demand(description->GetNALLengthSize() <= 4);
            if (description->audioEntry != nullptr) {
                (void)description->audioEntry->MaximumBitrate();
            }
        }
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const ByteView bytes(data, size);
    MovieRead read;
    CMoov moov(bytes, read);
    Demand(read.g_nTrackCount == moov.tracks.size());
    Demand(read.g_nStblChildBytes == 0);
    AskEverything(moov);

    const std::uint8_t amount = size > 0 ? bytes.back() : std::uint8_t{0};
    const auto made = moov.CreateMoov(
        Request(kVideoRequest, moov.GetVideoTimescale(), moov.GetVideoSampleRate(), amount),
        Request(kAudioRequest, moov.GetAudioTimescale(), moov.GetAudioSampleRate(), amount));
    Demand((made == nullptr) == moov.tracks.empty());
    if (made != nullptr) {
        for (const auto& track : made->tracks) {
            Demand(track->trackType != kUnknownTrack);
        }
        AskEverything(*made);
        CountingSink sink;
        Demand(made->WriteMoov(sink).IsGood());
        Demand(sink.Bytes() >= 8);
    }
    return 0;
}
