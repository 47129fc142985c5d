#include "base/bytes.h"

#include <array>
#include <gtest/gtest.h>

#include "base/fourcc.h"

namespace clipfix {
namespace {

constexpr std::array<std::uint8_t, 5> kBytes{0x01, 0x02, 0x03, 0x04, 0x05};

TEST(Bytes, ReadsNumbersOfBothOrders) {
    EXPECT_EQ(ReadBig16(kBytes, 0), 0x0102);
    EXPECT_EQ(ReadBig32(kBytes, 1), 0x02030405U);
    EXPECT_EQ(ReadLittle16(kBytes, 0), 0x0201);
    EXPECT_EQ(ReadLittle32(kBytes, 1), 0x05040302U);
}

TEST(Bytes, CountsEveryByteOutsideAsZero) {
    EXPECT_EQ(ReadBig32(kBytes, 3), 0x04050000U);
    EXPECT_EQ(ReadLittle32(kBytes, 3), 0x00000504U);
    EXPECT_EQ(ReadBig64(kBytes, 5), 0U);
    EXPECT_EQ(ReadBig32(kBytes, SIZE_MAX - 1), 0U);
    EXPECT_EQ(ByteAt({}, 0), 0);
}

TEST(Bytes, NeverMatchesLettersThatReachOutside) {
    constexpr std::array<std::uint8_t, 4> kWord{'m', 'o', 'o', 'v'};
    EXPECT_TRUE(MatchesAt(kWord, 0, "moov"));
    EXPECT_TRUE(MatchesAt(kWord, 2, "ov"));
    EXPECT_FALSE(MatchesAt(kWord, 1, std::string_view("oov\0", 4)));
    EXPECT_FALSE(MatchesAt(kWord, 3, "vx"));
    EXPECT_FALSE(MatchesAt(kWord, SIZE_MAX, "m"));
}

TEST(Bytes, DropsWhatIsStoredOutside) {
    std::array<std::uint8_t, 3> bytes{};
    StoreLittle32(bytes, 1, 0x0A0B0C0DU);
    EXPECT_EQ(bytes, (std::array<std::uint8_t, 3>{0x00, 0x0D, 0x0C}));
    StoreBig32(bytes, SIZE_MAX, 0xFFFFFFFFU);
    EXPECT_EQ(bytes, (std::array<std::uint8_t, 3>{0x00, 0x0D, 0x0C}));
}

TEST(Bytes, AppendsNumbersOfBothOrders) {
    ByteVector bytes;
    AppendBig16(bytes, 0x0102);
    AppendLittle32(bytes, 0x03040506U);
    AppendText(bytes, "ab");
    AppendZeros(bytes, 1);
    EXPECT_EQ(bytes, (ByteVector{0x01, 0x02, 0x06, 0x05, 0x04, 0x03, 'a', 'b', 0x00}));
}

TEST(Bytes, CutsAViewAtItsEnd) {
    EXPECT_EQ(SubView(kBytes, 3).size(), 2U);
    EXPECT_EQ(SubView(kBytes, 1, 2).size(), 2U);
    EXPECT_TRUE(SubView(kBytes, 5).empty());
    EXPECT_TRUE(SubView(kBytes, SIZE_MAX, 4).empty());
}

TEST(FourCC, ComparesEqualToABigEndianRead) {
    constexpr std::array<std::uint8_t, 4> kWord{'m', 'o', 'o', 'v'};
    EXPECT_EQ(ReadBig32(kWord, 0), FourCC("moov"));
    EXPECT_EQ(PrintableFourCC(FourCC("moov")), "moov");
    EXPECT_EQ(PrintableFourCC(0x00617A7FU), ".az.");
}

}  // namespace
}  // namespace clipfix
