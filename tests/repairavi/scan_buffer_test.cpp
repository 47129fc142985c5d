#include "repairavi/scan_buffer.h"

#include <algorithm>
#include <gtest/gtest.h>

#include "repairavi/avi_job.h"
#include "support/memory_file.h"
#include "support/temp_folder.h"

namespace clipfix {
namespace {

using test::MemoryFile;
using test::Random;

constexpr std::uint32_t kSize = ScanBuffer::kSize;

// What the scan buffer stands for: 333333 bytes that are cleared and read in fact.
struct RealBuffer {
    const ByteVector& file;
    ByteVector bytes = ByteVector(kSize);
    std::size_t pointer = 0;
    std::uint32_t bytesRead = 0;

    void Refill(std::size_t offset) {
        std::fill(bytes.begin(), bytes.end(), std::uint8_t{0});
        const ByteView part = SubView(file, offset, kSize);
        std::copy(part.begin(), part.end(), bytes.begin());
        bytesRead = static_cast<std::uint32_t>(part.size());
        pointer = offset + part.size();
    }
    [[nodiscard]] std::uint8_t At(std::int64_t index) const {
        return index < 0 ? std::uint8_t{0} : ByteAt(bytes, static_cast<std::size_t>(index));
    }
    void Store(std::int64_t index, ByteView more) {
        for (const std::uint8_t byte : more) {
            if (index >= 0 && index < std::int64_t{kSize}) {
                bytes[static_cast<std::size_t>(index)] = byte;
            }
            ++index;
        }
    }
};

ByteVector RandomBytes(std::size_t size, unsigned seed) {
    Random dice(seed);
    ByteVector bytes(size);
    for (auto& byte : bytes) {
        byte = dice.Byte();
    }
    return bytes;
}

TEST(ScanBuffer, ShowsWhatARealBufferWouldShow) {
    const ByteVector file = RandomBytes(1'000'000, 1);
    const MemoryFile memory(file);
    platform::WindowReader reader(memory);
    ScanBuffer buffer(reader);
    RealBuffer real{file};
    buffer.Refill(0);
    real.Refill(0);
    Random dice(2);
    for (int round = 0; round < 3000; ++round) {
        switch (dice.Below(8)) {
            case 0: {
                const std::size_t offset =
                    dice.Below(static_cast<std::uint32_t>((file.size() + 10)));
                buffer.Refill(offset);
                real.Refill(offset);
                break;
            }
            case 1:
                buffer.ReadOn();
                real.Refill(real.pointer);
                break;
            case 2: {
                const std::int64_t at =
                    static_cast<std::int64_t>(dice.Below(static_cast<std::uint32_t>((kSize + 8)))) -
                    4;
                const ByteVector patch = RandomBytes(dice.Below(5), dice.Below(UINT32_MAX));
                buffer.Store(at, patch);
                real.Store(at, patch);
                break;
            }
            default: {
                const std::int64_t at = static_cast<std::int64_t>(
                                            dice.Below(static_cast<std::uint32_t>((kSize + 16)))) -
                                        8;
                const auto seen = buffer.Bytes<4>(at);
                for (std::int64_t i = 0; i < 4; ++i) {
                    ASSERT_EQ(seen[static_cast<std::size_t>(i)], real.At(at + i)) << at;
                }
            }
        }
        ASSERT_EQ(buffer.BytesRead(), real.bytesRead);
    }
    EXPECT_EQ(buffer.AllBytes(), real.bytes);
}

TEST(ScanBuffer, MatchesNothingOutside) {
    const MemoryFile memory(ByteVector(400'000, 'x'));
    platform::WindowReader reader(memory);
    ScanBuffer buffer(reader);
    buffer.Refill(0);
    EXPECT_TRUE(buffer.Matches(kSize - 2, xx_AVI));
    EXPECT_FALSE(buffer.Matches(kSize - 1, xx_AVI));
    EXPECT_FALSE(buffer.Matches(-1, xx_AVI));
    EXPECT_EQ(buffer.MarkerAt(kSize - 2), Marker::Tag);
    EXPECT_EQ(buffer.MarkerAt(kSize - 1), Marker::None);
    EXPECT_EQ(buffer.Little32(kSize - 2), 0x7878U);
}

TEST(ScanBuffer, FindsTheNextMarkerThroughRepairsAndAcrossWindows) {
    ByteVector file(500'000, 0x80);
    Random dice(3);
    for (int round = 0; round < 300; ++round) {
        const std::size_t at = dice.Below(static_cast<std::uint32_t>((file.size() - 4)));
        const std::string_view word = dice.Below(2) == 0 ? "LIST" : "00dc";
        std::copy(word.begin(), word.end(), file.begin() + static_cast<std::ptrdiff_t>(at));
    }
    const MemoryFile memory(file);
    platform::WindowReader reader(memory);
    ScanBuffer buffer(reader);
    buffer.Refill(100'000);
    buffer.Store(50, RIFF_AVI);
    buffer.Store(90'000, movi_AVI);
    for (std::uint32_t from = 0; from < kSize;) {
        std::uint32_t expected = from;
        while (expected < kSize && buffer.MarkerAt(expected) == Marker::None) {
            ++expected;
        }
        ASSERT_EQ(buffer.FindMarker(from, kSize, MarkerStops::All()), expected) << from;
        ASSERT_EQ(buffer.FindMarker(from, std::min(from + 7, kSize), MarkerStops::All()),
                  std::min(expected, std::min(from + 7, kSize)));
        from = expected + 1;
    }
    EXPECT_EQ(buffer.FindMarker(0, kSize, MarkerStops::All()), 50U);
}

class AppendedBytes : public testing::Test {
  protected:
    // What AppendTo brings into a file.
    ByteVector Append(std::int64_t index, std::uint64_t length) {
        std::optional<platform::File> file;
        auto made = platform::File::Create(folder_ / "out", platform::File::Existing::Replace);
        file = std::move(made).Value();
        JobState state;
        RepairedFile repaired(state, file, nullptr, reader_);
        buffer_.AppendTo(repaired, index, length);
        repaired.Finish();
        repaired.SetEnd(length);
        return test::ReadFile(folder_ / "out");
    }

    test::TempFolder folder_;
    ByteVector bytes_ = RandomBytes(400'000, 5);
    MemoryFile memory_{bytes_};
    platform::WindowReader reader_{memory_};
    ScanBuffer buffer_{reader_};
};

TEST_F(AppendedBytes, HoldTheRepairs) {
    buffer_.Refill(1000);
    buffer_.Store(10, RIFF_AVI);
    buffer_.Store(12, std::array<std::uint8_t, 1>{'X'});
    ByteVector expected(bytes_.begin() + 1000, bytes_.begin() + 1030);
    std::copy_n("RIXF", 4, expected.begin() + 10);
    EXPECT_EQ(Append(0, 30), expected);
    EXPECT_EQ(Append(12, 1), ByteVector{'X'});
}

TEST_F(AppendedBytes, AreZeroOutsideTheBuffer) {
    buffer_.Refill(0);
    ByteVector expected(3);
    expected.insert(expected.end(), bytes_.begin(), bytes_.begin() + 5);
    EXPECT_EQ(Append(-3, 8), expected);

    expected.assign(bytes_.begin() + kSize - 5, bytes_.begin() + kSize);
    expected.resize(12);
    EXPECT_EQ(Append(kSize - 5, 12), expected);
    EXPECT_EQ(Append(kSize + 5, 12), ByteVector(12));
}

TEST_F(AppendedBytes, AreZeroBehindTheFilesEnd) {
    buffer_.Refill(399'990);
    ByteVector expected(bytes_.end() - 10, bytes_.end());
    expected.resize(15);
    EXPECT_EQ(Append(0, 15), expected);
}

}  // namespace
}  // namespace clipfix
