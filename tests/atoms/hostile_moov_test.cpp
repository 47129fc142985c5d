#include <array>
#include <chrono>
#include <gtest/gtest.h>
#include <random>

#include "atoms/kind_tags.h"
#include "atoms/memory_sink.h"
#include "atoms/moov.h"
#include "atoms/reference_movie.h"

namespace clipfix {
namespace {

using test::Atom;
using test::AtomOf;
using test::ByteBuilder;
using test::Moov;

// Reads the bytes, asks all there is to ask, rebuilds and writes. Gives the number of tracks.
std::size_t UseUp(ByteView bytes) {
    MovieRead read;
    CMoov moov(bytes, read);
    EXPECT_EQ(read.g_nTrackCount, moov.tracks.size());
    EXPECT_EQ(read.g_nStblChildBytes, 0U);
    (void)moov.GetSPS();
    (void)moov.GetPPS();
    (void)moov.GetVPS();
    (void)moov.GetAudioSpecificInfo();
    for (const auto& track : moov.tracks) {
        EXPECT_NE(track->mdia, nullptr);
        if (const CStsd* description = track->SampleDescription()) {
            (void)description->GetNALLengthSize();
        }
    }
    CAtomCreationRequest video;
    video.requestType = kVideoRequest;
    video.stcoEntries = {16};
    video.stszEntries = {1, 2, 3};
    video.timescale = moov.GetVideoTimescale();
    video.sampleRate = moov.GetVideoSampleRate();
    CAtomCreationRequest audio = video;
    audio.requestType = kAudioRequest;
    if (const auto made = moov.CreateMoov(video, audio)) {
        test::MemorySink sink;
        EXPECT_TRUE(made->WriteMoov(sink));
    }
    return moov.tracks.size();
}

// A movie with one of everything.
ByteVector FullMovie() {
    const ByteVector video = test::VideoTrak(
        Atom("stbl", {test::AvcStsd(), test::Table("stts", 1, {6, 1000}),
                      test::Table("stss", 2, {1, 3}), test::Table("ctts", 2, {3, 0, 3, 1}),
                      test::Table("stsc", 1, {1, 6, 1}), test::Stsz({1, 2, 3, 4, 5, 6}),
                      test::Table("co64", 1, {0, 48}), AtomOf("sdtp", ByteVector(10))}));
    return Moov({video, test::AacTrak(), test::PcmTrak("twos"), test::PcmTrak("sowt"),
                 test::TimecodeTrak()});
}

TEST(HostileMoov, ReadsWholeAsTheControl) {
    EXPECT_EQ(UseUp(FullMovie()), 5U);
}

TEST(HostileMoov, IsReadAtEveryLengthItCanBeCutTo) {
    const ByteVector whole = FullMovie();
    for (std::size_t size = 0; size < whole.size(); ++size) {
        EXPECT_LE(UseUp(ByteView(whole).first(size)), 5U) << size;
    }
}

TEST(HostileMoov, IsReadWithAnyFourBytesReplacedByAnExtremeNumber) {
    const ByteVector whole = FullMovie();
    for (const std::uint32_t number : {0U, 1U, 7U, 8U, 0x7FFFFFFFU, 0x80000000U, 0xFFFFFFFFU}) {
        for (std::size_t at = 0; at + 4 <= whole.size(); at += 2) {
            ByteVector damaged = whole;
            StoreBig32(damaged, at, number);
            EXPECT_LE(UseUp(damaged), 5U) << at;
        }
    }
}

TEST(HostileMoov, IsReadWithRandomBytesOverwritten) {
    const ByteVector whole = FullMovie();
    std::mt19937 random(20240229);
    for (int round = 0; round < 3000; ++round) {
        ByteVector damaged = whole;
        for (unsigned i = 0; i < 1 + random() % 20; ++i) {
            damaged[random() % damaged.size()] = static_cast<std::uint8_t>(random());
        }
        EXPECT_LE(UseUp(damaged), 5U);
    }
}

// Nothing but the codes of known children under small sizes, in any order.
TEST(HostileMoov, IsReadFromRandomHeads) {
    constexpr std::array<const char*, 24> kCodes{"mvhd", "trak", "tkhd", "mdia", "mdhd", "hdlr",
                                                 "minf", "stbl", "stsd", "stts", "stsc", "stsz",
                                                 "stco", "co64", "ctts", "stss", "avc1", "avcC",
                                                 "hvc1", "hvcC", "mp4a", "esds", "edts", "udta"};
    std::mt19937 random(42);
    for (int round = 0; round < 2000; ++round) {
        ByteBuilder bytes;
        bytes.Big32(0).Text("moov");
        while (bytes.Size() < 2000) {
            bytes.Big32(static_cast<std::uint32_t>(random() % 400))
                .Text(kCodes[random() % kCodes.size()]);
            bytes.Zeros(random() % 20);
        }
        UseUp(bytes.View());
    }
}

double SecondsFor(ByteView bytes) {
    const auto start = std::chrono::steady_clock::now();
    UseUp(bytes);
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

// Each level looks at its bytes once, so that the worst a movie can do is a small multiple of its
// size. The limits are generous: what is meant is that none of these takes minutes.

TEST(HostileMoov, TakesNoLongForHugeCounts) {
    ByteVector stsd = test::Stsd({test::VideoEntry("jpeg", 1, 1)});
    StoreBig32(stsd, 12, 0xFFFFFFFF);
    const ByteVector stbl =
        Atom("stbl",
             {stsd, test::Table("stts", 0xFFFFFFFF, {1, 1}), test::Table("stss", 0xFFFFFFFF, {1}),
              test::Table("ctts", 0xFFFFFFFF, {1, 1}), test::Table("stsc", 0xFFFFFFFF, {1, 1, 1}),
              test::UniformStsz(0xFFFFFFFF, 1), test::Table("co64", 0xFFFFFFFF, {0, 1})});
    EXPECT_LT(SecondsFor(Moov({test::VideoTrak(stbl)})), 2.0);
}

TEST(HostileMoov, TakesNoLongForAVideoTrackOfEndlessPcmSamples) {
    const ByteVector stbl =
        Atom("stbl", {test::Stsd({test::AudioEntry("twos", 0)}), test::Table("stts", 1, {1, 1}),
                      test::Table("stss", 2, {1, 2}), test::Table("stsc", 1, {1, 0xFFFFFFFF, 1}),
                      test::UniformStsz(1, 1), test::Table("stco", 1, {1})});
    EXPECT_LT(SecondsFor(Moov({test::VideoTrak(stbl)})), 2.0);
}

TEST(HostileMoov, TakesNoLongForMegabytesOfNestedHeads) {
    // At every level a child that fits stands behind every other: heads that each claim the rest.
    for (const char* code : {"trak", "mdia", "minf", "stbl", "stsd", "udta", "edts"}) {
        ByteVector bytes(2U << 20U);
        for (std::size_t at = 0; at + 8 <= bytes.size(); at += 8) {
            StoreBig32(bytes, at, static_cast<std::uint32_t>(bytes.size() - at));
            for (std::size_t i = 0; i < 4; ++i) {
                bytes[at + 4 + i] = static_cast<std::uint8_t>(code[i]);
            }
        }
        EXPECT_LT(SecondsFor(bytes), 5.0) << code;
    }
}

TEST(HostileMoov, TakesNoLongForThousandsOfSmallDescriptions) {
    ByteBuilder entries;
    for (int i = 0; i < 200000; ++i) {
        entries.Big32(8).Text(i % 2 == 0 ? "avc1" : "twos");
    }
    const ByteVector stsd =
        test::FullAtom("stsd", ByteBuilder().Big32(0xFFFFFFFF).Bytes(entries.View()).Take());
    const ByteVector stbl = Atom("stbl", {stsd});
    EXPECT_LT(SecondsFor(Moov({test::VideoTrak(stbl)})), 5.0);
}

TEST(HostileMoov, TakesNoLongForThousandsOfTracks) {
    ByteBuilder tracks;
    for (int i = 0; i < 20000; ++i) {
        tracks.Bytes(Atom(
            "trak", {Atom("tkhd"),
                     Atom("mdia", {Atom("mdhd"), Atom("minf", {Atom("vmhd"), Atom("stbl")})})}));
    }
    EXPECT_LT(SecondsFor(Atom("moov", {tracks.Take()})), 10.0);
}

TEST(LongMovie, OfHalfAMillionSamplesIsReadAndRebuiltInWellUnderASecond) {
    constexpr std::uint32_t kSamples = 500000;
    ByteBuilder sizes;
    ByteBuilder offsets;
    ByteBuilder composition;
    sizes.Big32(0).Big32(kSamples);
    offsets.Big32(kSamples);
    composition.Big32(kSamples);
    for (std::uint32_t i = 0; i < kSamples; ++i) {
        sizes.Big32(i);
        offsets.Big32(i);
        composition.Big32(1).Big32(i % 3);
    }
    const ByteVector stbl = Atom(
        "stbl", {test::AvcStsd(), test::Table("stts", 1, {kSamples, 1000}),
                 test::FullAtom("ctts", composition.View()), test::Table("stsc", 1, {1, 1, 1}),
                 test::FullAtom("stsz", sizes.View()), test::FullAtom("stco", offsets.View())});
    const ByteVector bytes = Moov({test::VideoTrak(stbl), test::AacTrak()});

    CAtomCreationRequest video;
    video.requestType = kVideoRequest;
    video.stszEntries.assign(kSamples, 4000);
    video.stcoEntries.assign(kSamples, 16);
    CAtomCreationRequest audio;
    audio.requestType = kAudioRequest;

    const auto start = std::chrono::steady_clock::now();
    MovieRead read;
    CMoov moov(bytes, read);
    ASSERT_EQ(moov.tracks.size(), 2U);
    const auto made = moov.CreateMoov(video, audio);
    test::MemorySink sink;
    EXPECT_TRUE(made->WriteMoov(sink));
    const std::chrono::duration<double> taken = std::chrono::steady_clock::now() - start;
    EXPECT_EQ(sink.Bytes().size(), made->size);
    RecordProperty("seconds", std::to_string(taken.count()));
    EXPECT_LT(taken.count(), 5.0);  // a debug build under a sanitizer; a release build: about 0.03
}

}  // namespace
}  // namespace clipfix
