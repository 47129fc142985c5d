// Scans any bytes as a damaged movie. The first byte chooses codec, sound and length size. Besides
// the absence of crashes, what must hold for every input: chunks are never mixed and never empty,
// records of video follow one another without a gap, and nothing is taken twice.

#include <cstdint>

#include "codec/avc_configuration_record.h"
#include "codec/hevc_configuration_record.h"
#include "fuzz_input.h"
#include "repairmov/fork_locator.h"
#include "support/memory_file.h"
#include "support/mov_job.h"
#include "support/nal_stream.h"

namespace {

using namespace clipfix;

using fuzz::Demand;

ScanSettings SettingsFrom(std::uint8_t choice) {
    static const CAVCDecoderConfigurationRecord avc(
        test::AvcC(0xFF, test::Sps264(), test::Pps264()));
    static const HVCDecoderConfigurationRecord hevc = [] {
        HVCDecoderConfigurationRecord record;
        record.Parse(test::HvcC265(), 64, 48);
        return record;
    }();
    constexpr std::string_view kSounds[] = {"", "MP4A_AUDIO_CODER_FORMAT",
                                            "SOWT_AUDIO_CODER_FORMAT", "TWOS_AUDIO_CODER_FORMAT"};
    ScanSettings settings;
    if ((choice & 1U) != 0) {
        settings.parameterSets.vps = hevc.vps;
        settings.parameterSets.sps265 = hevc.sps;
        settings.parameterSets.pps265 = hevc.pps;
    } else {
        settings.parameterSets.sps = avc.sps;
        settings.parameterSets.pps = avc.pps;
    }
    settings.audioCoderFormat = kSounds[(choice >> 1U) & 3U];
    settings.audioSpecificInfo = {0x12, 0x10};
    settings.nalLengthSize = (choice & 8U) != 0 ? (choice >> 4U) % 5U : 4U;
    return settings;
}

void DemandOrder(const Chunk& chunk) {
    Demand(!chunk.samples.empty() && chunk.recordCount >= chunk.samples.size());
    for (std::size_t i = 1; i < chunk.samples.size(); ++i) {
        const CSample& before = chunk.samples[i - 1];
        const CSample& sample = chunk.samples[i];
        Demand(sample.name == before.name);
        Demand(sample.offset >= before.offset + before.size);
        Demand(!IsVideo(sample.name) || sample.offset == before.offset + before.size);
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size == 0) {
        return 0;
    }
    const test::MemoryFile file(ByteVector(data + 1, data + size));
    const ScanSettings settings = SettingsFrom(data[0]);
    test::MovJobWorld world;
    ForkLocator locator(world.Context(), file, settings);
    Demand(locator.Run());
    Demand(locator.BytesScanned() == file.Size());
    for (const Chunk& chunk : locator.Found().TakeChunks()) {
        DemandOrder(chunk);
    }
    return 0;
}
