// How fast a scan can ask "does a unit stand here": one position at a time on slices and on noise,
// and whole blocks, held against the speed at which this machine reads memory.

#include <benchmark/benchmark.h>
#include <chrono>
#include <cstring>
#include <random>

#include "codec/block_test.h"
#include "codec/h264_pps.h"
#include "codec/h264_sps.h"
#include "codec/h265_pps.h"
#include "codec/h265_sps.h"
#include "codec/h265_vps.h"
#include "codec/nalu.h"
#include "support/bit_writer.h"

namespace clipfix {
namespace {

constexpr std::uint32_t kLengthSize = 4;
// The largest unit that a chain may begin with, in bytes.
constexpr std::uint32_t kLargestUnit = 2'199'999;
// Larger than the caches of usual machines.
constexpr std::size_t kBlockLength = std::size_t{256} << 20U;

struct References {
    CSPS sps;
    CPPS pps;
    CVPS vps;
    SPS_265 sps265;
    PPS_265 pps265;

    References() {
        sps.seq_parameter_set_id = 0;
        sps.separate_colour_plane_flag = 0;
        sps.log2_max_frame_num_minus4 = 0;
        sps.frame_mbs_only_flag = 1;
        sps.pic_order_cnt_type = 0;
        sps.log2_max_pic_order_cnt_lsb_minus4 = 2;
        pps.bottom_field_pic_order_in_frame_present_flag = 0;
        sps265.nuh_layer_id = 0;
        sps265.picSizeInMinCbs = 240 * 135;
        sps265.picHeightRemainder = 56;
        sps265.log2_max_pic_order_cnt_lsb_minus4 = 4;
        pps265.dependent_slice_segments_enabled_flag = 0;
        pps265.tiles_enabled_flag = 0;
        pps265.entropy_coding_sync_enabled_flag = 1;
        pps265.slice_segment_header_extension_present_flag = 0;
    }

    [[nodiscard]] ReferenceParameterSets View(bool isH265) const {
        return isH265 ? ReferenceParameterSets{nullptr, nullptr, &vps, &sps265, &pps265}
                      : ReferenceParameterSets{&sps, &pps, nullptr, nullptr, nullptr};
    }
};

const ByteVector& Noise() {
    static const ByteVector kNoise = [] {
        ByteVector bytes(kBlockLength);
        std::mt19937_64 random(20240917);
        for (std::size_t i = 0; i < bytes.size(); i += 8) {
            const std::uint64_t word = random();
            std::memcpy(bytes.data() + i, &word, sizeof word);
        }
        return bytes;
    }();
    return kNoise;
}

// The bytes of a P slice of a picture in the middle of a stream.
ByteVector SliceProbe(bool isH265) {
    test::BitWriter bits;
    bits.Bits(20'000, 32);
    if (isH265) {
        bits.Bits(0x0201, 16).Bit(1).Ue(0).Ue(16).Ue(9);
    } else {
        bits.Bits(0x41, 8).Ue(0).Ue(5).Ue(0).Bits(7, 4).Bits(14, 6).Se(-3);
    }
    while (bits.View().size() < CNALU::kProbeLength) {
        bits.Bits(0xA7, 8);
    }
    return bits.View();
}

void ParseSlice(benchmark::State& state) {
    const References references;
    const bool isH265 = state.range(0) == 265;
    const ReferenceParameterSets view = references.View(isH265);
    const ByteVector probe = SliceProbe(isH265);
    for ([[maybe_unused]] auto _ : state) {
        auto unit = CNALU::Parse(probe, kLengthSize, view);
        if (!unit) {
            state.SkipWithError("the slice is refused");
            break;
        }
        benchmark::DoNotOptimize(unit);
    }
}
BENCHMARK(ParseSlice)->Arg(264)->Arg(265);

void ParseNoise(benchmark::State& state) {
    const References references;
    const ReferenceParameterSets view = references.View(state.range(0) == 265);
    constexpr std::size_t kPositions = std::size_t{1} << 20U;
    const ByteView noise = ByteView(Noise()).first(kPositions + CNALU::kProbeLength);
    for ([[maybe_unused]] auto _ : state) {
        std::size_t accepted = 0;
        for (std::size_t at = 0; at < kPositions; ++at) {
            accepted +=
                CNALU::Parse(noise.subspan(at, CNALU::kProbeLength), kLengthSize, view).has_value();
        }
        benchmark::DoNotOptimize(accepted);
    }
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(kPositions));
}
BENCHMARK(ParseNoise)->Arg(264)->Arg(265)->Unit(benchmark::kMillisecond);

std::uint64_t SumOf(ByteView bytes) {
    std::uint64_t sum = 0;
    for (std::size_t i = 0; i + 8 <= bytes.size(); i += 8) {
        std::uint64_t word = 0;
        std::memcpy(&word, bytes.data() + i, sizeof word);
        sum += word;
    }
    return sum;
}

void ReadMemory(benchmark::State& state) {
    const ByteView noise = Noise();
    for ([[maybe_unused]] auto _ : state) {
        benchmark::DoNotOptimize(SumOf(noise));
    }
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(noise.size()));
}
BENCHMARK(ReadMemory)->Unit(benchmark::kMillisecond);

// The counter `of_memory_speed` is the speed of the test as a share of that of ReadMemory, measured
// in turn; it should not fall below a third. `kept` counts candidates for each million positions.
void TestBlockOfNoise(benchmark::State& state) {
    const References references;
    const BlockTest test(references.View(state.range(0) == 265), kLengthSize, kLargestUnit);
    const ByteView noise = Noise();
    using Clock = std::chrono::steady_clock;
    Clock::duration tested{};
    Clock::duration read{};
    std::size_t kept = 0;
    for ([[maybe_unused]] auto _ : state) {
        const Clock::time_point start = Clock::now();
        kept = test.FindAll(noise, 0, noise.size()).size();
        tested += Clock::now() - start;
        state.PauseTiming();
        const Clock::time_point readStart = Clock::now();
        benchmark::DoNotOptimize(SumOf(noise));
        read += Clock::now() - readStart;
        state.ResumeTiming();
    }
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(noise.size()));
    state.counters["of_memory_speed"] =
        static_cast<double>(read.count()) / static_cast<double>(tested.count());
    state.counters["kept"] = static_cast<double>(kept) * 1e6 / static_cast<double>(noise.size());
}
BENCHMARK(TestBlockOfNoise)->Arg(264)->Arg(265)->Unit(benchmark::kMillisecond);

// Silence and other stretches of one value.
void TestBlockOfOneValue(benchmark::State& state) {
    const References references;
    const BlockTest test(references.View(false), kLengthSize, kLargestUnit);
    const ByteVector bytes(std::size_t{64} << 20U, static_cast<std::uint8_t>(state.range(0)));
    for ([[maybe_unused]] auto _ : state) {
        benchmark::DoNotOptimize(test.FindNext(bytes, 0, bytes.size()));
    }
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(bytes.size()));
}
BENCHMARK(TestBlockOfOneValue)->Arg(0x00)->Arg(0x55)->Arg(0xFF)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace clipfix
