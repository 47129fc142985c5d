#include "repairavi/marker_search.h"

#include <gtest/gtest.h>

#include "repairavi/avi_job.h"
#include "repairavi/avi_markers.h"
#include "support/byte_builder.h"

namespace clipfix {
namespace {

using test::ByteBuilder;
using test::Random;

ByteVector Letters(std::string_view text) {
    return ByteBuilder().Text(text).Take();
}

TEST(RecogniseMarker, KnowsEachMarker) {
    EXPECT_EQ(RecogniseMarker(Letters("RIFF")), Marker::Riff);
    EXPECT_EQ(RecogniseMarker(Letters("AVI ")), Marker::Avi);
    EXPECT_EQ(RecogniseMarker(Letters("LIST")), Marker::List);
    EXPECT_EQ(RecogniseMarker(Letters("JUNK")), Marker::Junk);
    EXPECT_EQ(RecogniseMarker(Letters("movi")), Marker::Movi);
    EXPECT_EQ(RecogniseMarker(Letters("idx1")), Marker::Idx1);
    EXPECT_EQ(RecogniseMarker(Letters("vids")), Marker::Vids);
    EXPECT_EQ(RecogniseMarker(Letters("auds")), Marker::Auds);
    for (const char* tag : {"dc", "db", "xx", "wb", "dc\x01\x02", "wbwb"}) {
        EXPECT_EQ(RecogniseMarker(Letters(tag)), Marker::Tag) << tag;
    }
}

TEST(RecogniseMarker, TellsLettersOfOneCaseFromTheOther) {
    for (const char* other : {"riff", "avi ", "AVIX", "list", "Junk", "MOVI", "IDX1", "ix00", "DC",
                              "pc", "tx", "indx", "odml", "id"}) {
        EXPECT_EQ(RecogniseMarker(Letters(other)), Marker::None) << other;
    }
}

TEST(RecogniseMarker, KnowsNoMarkerThatTheViewsEndCuts) {
    for (const char* cut :
         {"", "R", "RIF", "AVI", "LIS", "JUN", "mov", "idx", "vid", "aud", "d", "x", "w"}) {
        EXPECT_EQ(RecogniseMarker(Letters(cut)), Marker::None) << cut;
    }
}

constexpr MarkerStops kAll = MarkerStops::All();

MarkerStops WithDigits() {
    MarkerStops stops = kAll;
    stops.PassTagsWithoutDigits();
    return stops;
}

MarkerStops WithDigitsAndWithoutWords() {
    MarkerStops stops = WithDigits();
    stops.Pass(Marker::Riff);
    stops.Pass(Marker::Movi);
    stops.Pass(Marker::Auds);
    return stops;
}

// All forms of the search against the plain one.
void ExpectAllAgree(ByteView bytes) {
    for (const MarkerStops stops : {kAll, WithDigits(), WithDigitsAndWithoutWords()}) {
        const std::size_t plain = marker_search::FindPlainly(bytes, 0, stops);
        ASSERT_EQ(marker_search::FindBySixteen(bytes, stops), plain);
        ASSERT_EQ(marker_search::FindWidely(bytes, stops), plain);
    }
}

TEST(FindMarker, FindsEachMarkerAtEveryPlaceOfABlock) {
    for (const char* marker :
         {"RIFF", "AVI ", "LIST", "JUNK", "movi", "idx1", "vids", "auds", "dc", "db", "xx", "wb"}) {
        for (std::size_t at = 0; at < 100; ++at) {
            for (const std::size_t behind : {0U, 1U, 2U, 40U}) {
                const ByteVector bytes =
                    ByteBuilder().Fill(at, 0xD8).Text(marker).Fill(behind, 0xFF).Take();
                ASSERT_EQ(FindMarker(bytes, kAll), at) << marker;
                ExpectAllAgree(bytes);
            }
        }
    }
}

TEST(FindMarker, CanPassATagWithoutTwoDigitsAhead) {
    const ByteVector bytes = Letters("..dc..1wb..x1db..12xx..");
    EXPECT_EQ(FindMarker(bytes, WithDigits()), 19U);
    EXPECT_EQ(FindMarker(bytes, kAll), 2U);
}

TEST(FindMarker, StopsWhereTheDigitsMayStandAheadOfTheView) {
    EXPECT_EQ(FindMarker(Letters("dc....."), WithDigits()), 0U);
    EXPECT_EQ(FindMarker(Letters("0wb...."), WithDigits()), 1U);
    EXPECT_EQ(FindMarker(Letters("LIST"), WithDigits()), 0U);
}

TEST(FindMarker, PassesOverTheMarkersThatItWasToldToPass) {
    const ByteVector bytes = Letters("RIFFmoviaudsvids");
    EXPECT_EQ(FindMarker(bytes, kAll), 0U);
    EXPECT_EQ(FindMarker(bytes, WithDigitsAndWithoutWords()), 12U);
}

TEST(FindMarker, GivesTheSizeWhereThereIsNone) {
    for (std::size_t size = 0; size < 100; ++size) {
        EXPECT_EQ(FindMarker(ByteVector(size), kAll), size);
        const ByteVector cut = ByteBuilder().Fill(size, 'd').Text("LIS").Take();
        EXPECT_EQ(FindMarker(cut, kAll), size + 3);
        ExpectAllAgree(cut);
    }
}

TEST(FindMarker, AgreesInAllFormsOnRandomBytesOfTheMarkersLetters) {
    Random dice(7);
    const std::string_view letters = "RIFAV LSTJUNKmovidx1sauwbc019\x80\xE4";
    for (int round = 0; round < 20000; ++round) {
        ByteVector bytes(dice.Below(120));
        for (auto& byte : bytes) {
            byte = dice.Below(3) == 0
                       ? dice.Byte()
                       : static_cast<std::uint8_t>(
                             letters[dice.Below(static_cast<std::uint32_t>(letters.size()))]);
        }
        ExpectAllAgree(bytes);
    }
}

}  // namespace
}  // namespace clipfix
