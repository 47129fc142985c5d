#include "base/bit_reader.h"

#include <chrono>
#include <gtest/gtest.h>

#include "support/bit_writer.h"
#include "support/random.h"

namespace clipfix {
namespace {

using test::BitWriter;

TEST(BitReader, TakesTheHighestBitOfAByteFirst) {
    const ByteVector bytes{0xA5, 0x0F};
    BitReader in(bytes);
    EXPECT_EQ(in.ReadBit(), 1U);
    EXPECT_EQ(in.ReadBit(), 0U);
    EXPECT_EQ(in.ReadBits(6), 0x25U);
    EXPECT_EQ(in.BytePosition(), 1U);
    EXPECT_EQ(in.BitPosition(), 0U);
    EXPECT_EQ(in.ReadBits(5), 1U);
    EXPECT_EQ(in.BitPosition(), 5U);
    EXPECT_EQ(in.ReadBits(3), 7U);
    EXPECT_FALSE(in.HasOverrun());
}

TEST(BitReader, ReadsThirtyTwoBitsAtAnyBit) {
    const ByteVector bytes{0x01, 0x23, 0x45, 0x67, 0x89, 0xAB};
    BitReader in(bytes);
    EXPECT_EQ(in.ReadBits(7), 0U);
    EXPECT_EQ(in.ReadBits(32), 0x91A2B3C4U);
}

TEST(BitReader, ReadsNothingForACountOfZeroOrLess) {
    const ByteVector bytes{0xFF};
    BitReader in(bytes);
    EXPECT_EQ(in.ReadBits(0), 0U);
    EXPECT_EQ(in.ReadBits(-1), 0U);
    EXPECT_EQ(in.ReadBits(INT32_MIN), 0U);
    EXPECT_EQ(in.BitPosition(), 0U);
}

TEST(BitReader, WrapsTheShiftsOfMoreThanThirtyTwoBitsAndAddsThemUp) {
    // 40 bits: the first eight stand in the places of the last eight.
    const ByteVector bytes{0x03, 0x80, 0x00, 0x00, 0x05};
    BitReader in(bytes);
    EXPECT_EQ(in.ReadBits(40), 0x80000008U);
}

TEST(BitReader, ReadsZeroPastTheEndAndStillMovesOn) {
    const ByteVector bytes{0xFF};
    BitReader in(bytes);
    EXPECT_EQ(in.ReadBits(12), 0xFF0U);
    EXPECT_TRUE(in.HasOverrun());
    EXPECT_EQ(in.BytePosition(), 1U);
    EXPECT_EQ(in.BitPosition(), 4U);
    EXPECT_EQ(in.ReadBit(), 0U);
    EXPECT_EQ(in.BitPosition(), 5U);
    EXPECT_EQ(in.ReadBits(INT32_MAX), 0U);
    EXPECT_EQ(in.BytePosition(), (13U + 2147483647U) / 8U);
}

TEST(BitReader, ReadsTheShortExpGolombCodes) {
    // 1, 010, 011, 00100, 00101, 00110, 00111 are 0 to 6.
    const ByteVector bytes{0b10100110, 0b01000010, 0b10011000, 0b11100000};
    BitReader in(bytes);
    for (std::uint32_t value = 0; value < 7; ++value) {
        EXPECT_EQ(in.ReadUe(), value);
    }
    EXPECT_EQ(in.BytePosition(), 3U);
    EXPECT_EQ(in.BitPosition(), 3U);
}

TEST(BitReader, ReadsTheLongestCodesOfTheStandard) {
    const ByteVector bytes = BitWriter().Ue(0xFFFFFFFEU).Ue(0x7FFFFFFFU).Ue(3).View();
    BitReader in(bytes);
    EXPECT_EQ(in.ReadUe(), 0xFFFFFFFEU);
    EXPECT_EQ(in.ReadUe(), 0x7FFFFFFFU);
    EXPECT_EQ(in.ReadUe(), 3U);
}

TEST(BitReader, WrapsAtThirtyTwoZeroBits) {
    // 32 zeros: 2 to the power of 32 wraps to 1, less 1, plus the 32 bits of the value.
    const ByteVector bytes = BitWriter().Bits(0, 32).Bit(1).Bits(0x12345678, 32).View();
    EXPECT_EQ(BitReader(bytes).ReadUe(), 0x12345678U);
    // 33 zeros: 2 less 1; the first bit of the value stands in the place of the last one.
    const ByteVector longer = BitWriter().Bits(0, 33).Bit(1).Bits(0x100000004, 33).View();
    EXPECT_EQ(BitReader(longer).ReadUe(), 1U + 1U + 4U);
}

TEST(BitReader, EndsACodeAtTheEndOfTheBytes) {
    const ByteVector zeros{0x00, 0x00};
    BitReader in(zeros);
    EXPECT_EQ(in.ReadUe(), 0xFFFFU);  // sixteen zeros, and no 1 bit
    EXPECT_EQ(in.BytePosition(), 2U);
    EXPECT_FALSE(in.HasOverrun());
    EXPECT_TRUE(in.AtLimit());
    EXPECT_EQ(in.ReadUe(), 0U);

    // Eleven zeros and four of eleven bits, 1010: the missing ones count 0 in their places.
    const ByteVector cut{0x00, 0x1A};
    BitReader cutIn(cut);
    EXPECT_EQ(cutIn.ReadUe(), 2047U + 0b10100000000U);
    EXPECT_EQ(cutIn.BytePosition(), 2U);
}

TEST(BitReader, EndsACodeAtItsLimitBeforeTheEndOfTheBytes) {
    const ByteVector bytes{0x01, 0xFF, 0xFF};
    EXPECT_EQ(BitReader(bytes).ReadUe(), 127U + 127U);
    BitReader in(bytes, 0, 1);
    EXPECT_EQ(in.ReadUe(), 127U);
    EXPECT_EQ(in.BytePosition(), 1U);
    EXPECT_EQ(in.ReadBits(8), 0xFFU);  // a fixed length does not heed it
    EXPECT_EQ(in.ReadUe(), 0U);        // past it, as at it
    EXPECT_EQ(in.BytePosition(), 2U);
}

TEST(BitReader, ReadsSignedCodes) {
    const ByteVector bytes = BitWriter().Ue(0).Ue(1).Ue(2).Ue(3).Ue(4).View();
    BitReader in(bytes);
    EXPECT_EQ(in.ReadSe(), 0);
    EXPECT_EQ(in.ReadSe(), 1);
    EXPECT_EQ(in.ReadSe(), -1);
    EXPECT_EQ(in.ReadSe(), 2);
    EXPECT_EQ(in.ReadSe(), -2);
}

TEST(BitReader, ReadsTheLargestSignedCodeWithoutOverflow) {
    const ByteVector bytes = BitWriter().Bits(0, 32).Bit(1).Bits(0xFFFFFFFF, 32).View();
    EXPECT_EQ(BitReader(bytes).ReadSe(), INT32_MIN);
}

TEST(BitReader, MovesToAnyPlace) {
    const ByteVector bytes{0x00, 0x10};
    BitReader in(bytes, 1);
    EXPECT_EQ(in.ReadBits(4), 1U);
    in.MoveTo(1, 3);
    EXPECT_EQ(in.ReadBit(), 1U);
    in.MoveTo(9);
    EXPECT_TRUE(in.HasOverrun());
    EXPECT_EQ(in.ReadUe(), 0U);
    EXPECT_EQ(in.BytePosition(), 9U);
    in.MoveToEnd();
    EXPECT_EQ(in.BytePosition(), 2U);
}

TEST(BitReader, ReadsZeroFromNoBytes) {
    BitReader in({});
    EXPECT_TRUE(in.AtLimit());
    EXPECT_EQ(in.ReadUe(), 0U);
    EXPECT_EQ(in.ReadSe(), 0);
    EXPECT_FALSE(in.HasOverrun());
    EXPECT_EQ(in.ReadBits(33), 0U);
    EXPECT_TRUE(in.HasOverrun());
}

TEST(BitReader, PassesOverALongStretchOfZerosQuickly) {
    const ByteVector zeros(std::size_t{1} << 24U);
    const auto start = std::chrono::steady_clock::now();
    BitReader in(zeros);
    EXPECT_EQ(in.ReadUe(), 0U);  // 2 to the power of 0 after the wrap, less 1
    EXPECT_EQ(in.BytePosition(), zeros.size());
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(5));
}

// The rules told bit by bit.
class PlainReader {
  public:
    PlainReader(ByteView bytes, std::size_t limit) : bytes_(bytes), limit_(limit) {}

    std::uint32_t Bit() {
        const std::uint32_t bit = (std::uint32_t{ByteAt(bytes_, byte_)} >> (7 - bit_)) & 1U;
        if (++bit_ == 8) {
            bit_ = 0;
            ++byte_;
        }
        return bit;
    }
    std::uint32_t Bits(std::int32_t count) {
        std::uint32_t value = 0;
        for (std::int32_t i = 0; i < count; ++i) {
            value += Bit() << static_cast<unsigned>((count - 1 - i) & 31);
        }
        return value;
    }
    std::uint32_t Ue() {
        std::uint32_t count = 0;
        while (byte_ < limit_ && Bit() == 0) {
            ++count;
        }
        std::uint32_t value = 0;
        for (std::uint32_t i = 0; i < count && byte_ < limit_; ++i) {
            value += Bit() << ((count - 1 - i) & 31U);
        }
        return (1U << (count & 31U)) - 1 + value;
    }
    [[nodiscard]] std::size_t Place() const { return byte_ * 8 + static_cast<unsigned>(bit_); }

  private:
    ByteView bytes_;
    std::size_t limit_;
    std::size_t byte_ = 0;
    int bit_ = 0;
};

TEST(BitReader, AgreesWithAReaderThatGoesBitByBit) {
    test::Random random(7);
    for (int round = 0; round < 20000; ++round) {
        ByteVector bytes(random.Below(40));
        // Sparse bits make long codes.
        const unsigned density = random.Below(9);
        for (auto& byte : bytes) {
            for (unsigned bit = 0; bit < 8; ++bit) {
                const bool isSet = random.Below(128) < (1U << density) / 4;
                byte = static_cast<std::uint8_t>((byte << 1) | (isSet ? 1 : 0));
            }
        }
        const std::size_t limit = random.Below(static_cast<std::uint32_t>(bytes.size()) + 1);
        BitReader in(bytes, 0, limit);
        PlainReader plain(bytes, limit);
        for (int step = 0; step < 12; ++step) {
            const unsigned kind = random.Below(3);
            if (kind == 0) {
                ASSERT_EQ(in.ReadBit(), plain.Bit());
            } else if (kind == 1) {
                const auto count = static_cast<std::int32_t>(random.Below(100)) - 2;
                ASSERT_EQ(in.ReadBits(count), plain.Bits(count));
            } else {
                ASSERT_EQ(in.ReadUe(), plain.Ue());
            }
            ASSERT_EQ(in.BytePosition() * 8 + in.BitPosition(), plain.Place());
        }
    }
}

}  // namespace
}  // namespace clipfix
