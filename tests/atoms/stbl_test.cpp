#include "atoms/stbl.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "atoms/kind_tags.h"
#include "atoms/reference_movie.h"
#include "base/fourcc.h"

namespace clipfix {
namespace {

using test::Atom;
using test::AtomOf;
using test::ByteBuilder;
using test::Stsz;
using test::Table;
using test::WithSize;
using ::testing::ElementsAre;

// The read leaves the sum of the children's sizes, which the parent judges.
struct ReadStbl {
    MovieRead read;
    CStbl stbl;

    explicit ReadStbl(const ByteVector& bytes) : stbl(AtomBlock::Of(bytes), read) {}
    [[nodiscard]] std::uint32_t ChildBytes() const { return read.g_nStblChildBytes; }
};

CAtomCreationRequest Request(std::string_view type) {
    CAtomCreationRequest request;
    request.stcoEntries = {16, 400};
    request.stszEntries = {70, 80, 90};
    request.stscEntries = std::make_shared<std::vector<CSampleToChunkEntery>>();
    request.stscEntries->emplace_back(1U, 2U, 1U);
    request.stscEntries->emplace_back(2U, 1U, 1U);
    request.timescale = 30000;
    request.sampleRate = 30.0;
    request.requestType = type;
    return request;
}

ByteVector Image(const CStbl& stbl) {
    ByteVector image;
    stbl.AppendImage(image);
    return image;
}

std::unique_ptr<CStbl> Rebuilt(const ByteVector& reference, const CAtomCreationRequest& request) {
    return ReadStbl(reference).stbl.Create(request);
}

TEST(CStbl, ReadsEveryTableItKnows) {
    const ByteVector bytes =
        Atom("stbl", {test::AvcStsd(), Table("stts", 1, {6, 1000}), Table("stss", 1, {1}),
                      Table("ctts", 1, {6, 0}), Table("stsc", 1, {1, 6, 1}), Stsz({1}),
                      Table("co64", 1, {0, 48})});
    const ReadStbl read(bytes);
    EXPECT_NE(read.stbl.stsd, nullptr);
    EXPECT_NE(read.stbl.stts, nullptr);
    EXPECT_NE(read.stbl.stss, nullptr);
    EXPECT_NE(read.stbl.stsc, nullptr);
    EXPECT_NE(read.stbl.stsz, nullptr);
    EXPECT_NE(read.stbl.stco, nullptr);
    EXPECT_NE(read.stbl.ctts, nullptr);
    EXPECT_EQ(read.ChildBytes() + 8, bytes.size());
}

TEST(CStbl, CountsTheChildrenItDropsAndNoOthers) {
    for (const char* code : {"sdtp", "cslg", "sdps", "sgpd", "sbgp", "csgm", "free"}) {
        const ByteVector bytes = Atom("stbl", {Stsz({1}), AtomOf(code, ByteVector(5))});
        EXPECT_EQ(ReadStbl(bytes).ChildBytes() + 8, bytes.size()) << code;
    }
    for (const char* code : {"stps", "stsh", "padb", "subs", "stdp", "sdpt", "skip"}) {
        const ByteVector bytes = Atom("stbl", {Stsz({1}), AtomOf(code, ByteVector(5))});
        EXPECT_EQ(ReadStbl(bytes).ChildBytes() + 8 + 13, bytes.size()) << code;
    }
}

TEST(CStbl, CountsATableThatOverrunsButNoFreeThatDoes) {
    for (const char* code :
         {"stsd", "stts", "stss", "stsc", "stsz", "stco", "co64", "ctts", "sdtp"}) {
        const ByteVector bytes = Atom("stbl", {WithSize(Atom(code), 1000)});
        EXPECT_EQ(ReadStbl(bytes).ChildBytes(), 1000U) << code;
    }
    for (const char* code : {"cslg", "sdps", "sgpd", "sbgp", "csgm", "free"}) {
        const ByteVector bytes = Atom("stbl", {WithSize(Atom(code), 1000)});
        EXPECT_EQ(ReadStbl(bytes).ChildBytes(), 0U) << code;
    }
}

TEST(CStbl, AddsTheSizesUpIn32Bits) {
    const ByteVector bytes =
        Atom("stbl", {WithSize(Atom("stts"), 0xFFFFFFF0), WithSize(Atom("stts"), 0x20)});
    // 0xFFFFFFF0 + 0x20 wraps to 0x10, which is what the two atoms take.
    EXPECT_EQ(ReadStbl(bytes).ChildBytes(), 0x10U);
}

TEST(CStbl, SlidesPastAChildOfSizeZero) {
    const ByteVector bytes = Atom("stbl", {WithSize(Atom("stts"), 0), Stsz({1, 2})});
    const ReadStbl read(bytes);
    EXPECT_EQ(read.stbl.stts, nullptr);
    EXPECT_EQ(read.stbl.SampleCount(), 2U);
}

TEST(CStbl, ReadsAChildWhoseHeadEndsTheAtom) {
    // The scan goes on to the last byte; a code that is cut off by the end is no code.
    ByteVector bytes = Atom("stbl", {Stsz({1}), Atom("free")});
    EXPECT_EQ(ReadStbl(bytes).ChildBytes() + 8, bytes.size());
    bytes.pop_back();
    EXPECT_EQ(ReadStbl(bytes).ChildBytes(), Stsz({1}).size());
}

TEST(CStblCreate, MakesEveryTableOfAVideoTrack) {
    const auto made = Rebuilt(test::VideoStbl(), Request(kVideoRequest));
    const ByteVector stsd = test::AvcStsd();
    ByteBuilder expected;
    expected.Big32(0).Text("stbl").Bytes(stsd);
    expected.Big32(24).Text("stts").Big32(0).Big32(1).Big32(3).Big32(1000);
    expected.Big32(40).Text("stsc").Big32(0).Big32(2);
    expected.Big32(1).Big32(2).Big32(1).Big32(2).Big32(1).Big32(1);
    expected.Big32(32).Text("stsz").Big32(0).Big32(0).Big32(3).Big32(70).Big32(80).Big32(90);
    expected.Big32(32).Text("co64").Big32(0).Big32(2).Big64(16).Big64(400);
    const auto size = static_cast<std::uint32_t>(8 + stsd.size() + 24 + 40 + 32 + 32);
    EXPECT_EQ(made->size, size);
    EXPECT_EQ(Image(*made), WithSize(expected.Take(), size));
}

TEST(CStblCreate, SharesTheDescriptionWithTheReference) {
    const ReadStbl reference(test::VideoStbl());
    const auto made = reference.stbl.Create(Request(kVideoRequest));
    EXPECT_EQ(made->stsd, reference.stbl.stsd);
}

TEST(CStblCreate, PutsSyncSamplesAndCompositionOffsetsBehindTheDescription) {
    const ByteVector ctts = Table("ctts", 2, {3, 2000, 3, 1000});
    const ByteVector reference = Atom(
        "stbl", {test::AvcStsd(), Table("stts", 1, {6, 1000}), ctts, Table("stss", 2, {1, 3}),
                 Table("stsc", 1, {1, 6, 1}), Stsz({1, 2, 3, 4, 5, 6}), Table("stco", 1, {48})});
    const auto made = Rebuilt(reference, Request(kVideoRequest));
    const ByteVector image = Image(*made);
    EXPECT_EQ(made->size, image.size());
    const std::size_t behind = 8 + test::AvcStsd().size();
    // 3 samples and a second sync sample of 3: 3 / 2 = 1 entry.
    EXPECT_EQ(ReadBig32(image, behind), 20U);
    EXPECT_TRUE(MatchesAt(image, behind + 4, "stss"));
    EXPECT_EQ(ReadBig32(image, behind + 12), 1U);
    EXPECT_EQ(ReadBig32(image, behind + 16), 1U);
    const ByteView offsets = SubView(image, behind + 20, ctts.size());
    EXPECT_EQ(ByteVector(offsets.begin(), offsets.end()), ctts);
    EXPECT_TRUE(MatchesAt(image, behind + 20 + ctts.size() + 4, "stts"));
}

TEST(CStblCreate, CarriesCompositionOffsetsOverOnlyWithMoreThanOneEntryThatFitted) {
    const auto withOffsets = [](const ByteVector& ctts) {
        return Atom("stbl", {test::AvcStsd(), Table("stts", 1, {6, 1000}), ctts,
                             Table("stsc", 1, {1, 6, 1}), Stsz({1}), Table("stco", 1, {48})});
    };
    const auto video = Request(kVideoRequest);
    EXPECT_NE(Rebuilt(withOffsets(Table("ctts", 2, {3, 0, 3, 1})), video)->ctts, nullptr);
    EXPECT_EQ(Rebuilt(withOffsets(Table("ctts", 1, {6, 0})), video)->ctts, nullptr);
    EXPECT_EQ(Rebuilt(withOffsets(Table("ctts", 0, {})), video)->ctts, nullptr);
    EXPECT_EQ(Rebuilt(withOffsets(Table("ctts", 2, {6, 0, 1})), video)->ctts, nullptr);
    EXPECT_EQ(Rebuilt(withOffsets(Table("ctts", 2, {3, 0, 3, 1})), Request(kAudioRequest))->ctts,
              nullptr);
}

TEST(CStblCreate, WritesNoCompositionOffsetsBeyondThoseThatFittedUnderTheOldSize) {
    const ByteVector ctts = Table("ctts", 3, {3, 0, 3, 1, 9});
    const ByteVector reference =
        Atom("stbl", {test::AvcStsd(), Table("stts", 1, {6, 1000}), ctts,
                      Table("stsc", 1, {1, 6, 1}), Stsz({1}), Table("stco", 1, {48})});
    const auto made = Rebuilt(reference, Request(kVideoRequest));
    // The image is 4 bytes shorter than the sizes say. That stays so.
    EXPECT_EQ(Image(*made).size() + 4, made->size);
}

TEST(CStblCreate, TakesTheDistanceOfSyncSamplesFromTheSecondEntryOrTwo) {
    const auto withSync = [](const ByteVector& stss) {
        return Atom("stbl", {test::AvcStsd(), Table("stts", 1, {6, 1000}), stss,
                             Table("stsc", 1, {1, 6, 1}), Stsz({1}), Table("stco", 1, {48})});
    };
    auto video = Request(kVideoRequest);
    video.stszEntries.assign(10, 5);
    const auto entriesOf = [&video, &withSync](const ByteVector& stss) {
        return Rebuilt(withSync(stss), video)->stss->entries;
    };
    EXPECT_THAT(entriesOf(Table("stss", 3, {1, 3, 7})), ElementsAre(1, 3));  // 10 / 3 - 1
    EXPECT_THAT(entriesOf(Table("stss", 1, {1})), ElementsAre(1, 2, 3, 4));
    EXPECT_THAT(entriesOf(Table("stss", 2, {1})), ElementsAre(1, 2, 3, 4));
    EXPECT_THAT(entriesOf(Table("stss", 0, {})), ElementsAre(1, 2, 3, 4));
    EXPECT_THAT(entriesOf(Table("stss", 2, {1, 0})), ElementsAre());
    EXPECT_EQ(Rebuilt(test::VideoStbl(), video)->stss, nullptr);
    EXPECT_EQ(Rebuilt(withSync(Table("stss", 1, {1})), Request(kAudioRequest))->stss, nullptr);
}

std::uint32_t Delta(std::uint32_t timescale, double sampleRate, std::string_view type) {
    auto request = Request(type);
    request.timescale = timescale;
    request.sampleRate = sampleRate;
    return Rebuilt(test::VideoStbl(), request)->stts->GetFirstSampleDuration();
}

TEST(CStblCreate, MakesTheDeltaOfTimeScaleAndRate) {
    EXPECT_EQ(Delta(48000, 46.875, kAudioRequest), 1024U);
    EXPECT_EQ(Delta(48000, 48000.0, kAudioRequest), 1U);
    EXPECT_EQ(Delta(90000, 29.97, kVideoRequest), 3003U);
    EXPECT_EQ(Delta(90000, 23.976, kVideoRequest), 3753U);           // 3753.75 is cut
    EXPECT_EQ(Delta(4000000000U, 0.5, kVideoRequest), 3705032704U);  // 8e9 less 2^32
}

TEST(CStblCreate, FallsBackTo1024ForSoundAndOneForVideo) {
    EXPECT_EQ(Delta(48000, 0.0, kAudioRequest), 0x400U);
    EXPECT_EQ(Delta(48000, 0.0, kVideoRequest), 1U);
    EXPECT_EQ(Delta(0, 0.0, kVideoRequest), 1U);
    EXPECT_EQ(Delta(0, 30.0, kVideoRequest), 1U);
    EXPECT_EQ(Delta(48000, 96000.0, kAudioRequest), 0x400U);
    EXPECT_EQ(Delta(48000, 1e-300, kAudioRequest), 0x400U);
    EXPECT_EQ(Delta(48000, 0.0, "anything"), 0x400U);
}

TEST(CStblCreate, ComparesTheTypeOfTheRequestWithoutRegardToCase) {
    EXPECT_EQ(Delta(48000, 0.0, "video_request"), 1U);
}

TEST(CStblCreate, KeepsTheReferencesRunsForTwosSound) {
    const ReadStbl reference(test::PcmStbl("twos"));
    auto request = Request(kAudioRequest);
    request.stcoEntries = {16, 400, 900};
    request.stszEntries.clear();
    const auto made = reference.stbl.Create(request);
    EXPECT_EQ(made->stsc, reference.stbl.stsc);
    EXPECT_EQ(made->stsc->data, Table("stsc", 1, {1, 5, 1}));
    EXPECT_EQ(made->stsz->data, test::UniformStsz(15, 1));
    EXPECT_EQ(made->stts->entries.front().sampleCount, 15U);
    EXPECT_EQ(made->size, Image(*made).size());
}

TEST(CStblCreate, CountsTwosSamplesByTheFirstRunHoweverTheLaterOnesDiffer) {
    const ByteVector reference =
        Atom("stbl", {test::Stsd({test::AudioEntry("twos", 0)}), Table("stts", 1, {10, 1}),
                      Table("stsc", 2, {1, 7, 1, 2, 100, 1}), test::UniformStsz(10, 1),
                      Table("stco", 2, {500, 520})});
    EXPECT_EQ(Rebuilt(reference, Request(kAudioRequest))->SampleCount(), 14U);
}

TEST(CStblCreate, LetsTheCountOfPcmSamplesWrapIn32Bits) {
    const ByteVector reference =
        Atom("stbl", {test::Stsd({test::AudioEntry("twos", 0)}), Table("stts", 1, {10, 1}),
                      Table("stsc", 1, {1, 0x80000001U, 1}), test::UniformStsz(10, 1),
                      Table("stco", 2, {500, 520})});
    EXPECT_EQ(Rebuilt(reference, Request(kAudioRequest))->SampleCount(), 2U);
}

TEST(CStblCreate, LeavesTheSizesEmptyForTwosSoundWithoutAnyRun) {
    const ByteVector reference =
        Atom("stbl", {test::Stsd({test::AudioEntry("twos", 0)}), Table("stts", 1, {10, 1}),
                      Table("stsc", 0, {}), test::UniformStsz(10, 1), Table("stco", 0, {})});
    const auto made = Rebuilt(reference, Request(kAudioRequest));
    EXPECT_EQ(made->SampleCount(), 0U);
    EXPECT_TRUE(made->stsz->data.empty());
    EXPECT_EQ(made->size, Image(*made).size());
}

TEST(CStblCreate, CountsSowtSamplesByTheFirstRunOfTheRequest) {
    const auto made = Rebuilt(test::PcmStbl("sowt"), Request(kAudioRequest));
    // 2 chunks of 2 samples by the first run, although the second run says 1.
    EXPECT_EQ(made->stsz->data, test::UniformStsz(4, 1));
    EXPECT_EQ(made->stsc->data, Table("stsc", 2, {1, 2, 1, 2, 1, 1}));
}

TEST(CStblCreate, LeavesTheSizesEmptyForSowtSoundWithoutAnyRun) {
    auto request = Request(kAudioRequest);
    request.stscEntries->clear();
    const auto made = Rebuilt(test::PcmStbl("sowt"), request);
    EXPECT_TRUE(made->stsz->data.empty());
    EXPECT_EQ(made->stsc->data, Table("stsc", 0, {}));
    EXPECT_EQ(made->stts->entries.front().sampleCount, 0U);
}

TEST(CStblCreate, TreatsAnUnknownCoderLikeAnyOther) {
    const ByteVector reference =
        Atom("stbl", {test::Stsd({test::VideoEntry("hev1", 64, 48)}), Table("stts", 1, {6, 1000}),
                      Table("stsc", 1, {1, 6, 1}), Stsz({1}), Table("stco", 1, {48})});
    EXPECT_THAT(Rebuilt(reference, Request(kVideoRequest))->stsz->entries, ElementsAre(70, 80, 90));
}

TEST(CStblCreate, DoesWithoutAnyTableOfTheReference) {
    const auto made = Rebuilt(Atom("stbl"), Request(kVideoRequest));
    EXPECT_EQ(made->stsd, nullptr);
    EXPECT_EQ(made->SampleCount(), 3U);
    EXPECT_EQ(made->size, Image(*made).size());
    const ByteVector twosAlone = Atom("stbl", {test::Stsd({test::AudioEntry("twos", 0)})});
    const auto pcm = Rebuilt(twosAlone, Request(kAudioRequest));
    EXPECT_EQ(pcm->SampleCount(), 0U);
    EXPECT_EQ(pcm->size, Image(*pcm).size());
}

TEST(CStblCreate, MakesEmptyTablesForARequestWithoutAnything) {
    CAtomCreationRequest empty;
    empty.requestType = kAudioRequest;
    const auto made = Rebuilt(test::AacStbl(), empty);
    EXPECT_EQ(made->stsz->data, Stsz({}));
    EXPECT_EQ(made->stsc->data, Table("stsc", 0, {}));
    EXPECT_EQ(made->stco->data, Table("co64", 0, {}));
    EXPECT_EQ(made->stts->data, Table("stts", 1, {0, 0x400}));
}

}  // namespace
}  // namespace clipfix
