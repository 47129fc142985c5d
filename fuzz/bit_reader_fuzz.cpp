// Holds the bit reader against one that goes bit by bit. The input: the byte at which codes end, a
// block of operations, and the bytes that they read.

#include "base/bit_reader.h"
#include "fuzz_input.h"

namespace {

using namespace clipfix;
using fuzz::Demand;

class PlainReader {
  public:
    PlainReader(ByteView bytes, std::size_t limit) : bytes_(bytes), limit_(limit) {}

    std::uint32_t Bit() {
        const std::uint32_t bit = (std::uint32_t{ByteAt(bytes_, at_ / 8)} >> (7 - at_ % 8)) & 1U;
        ++at_;
        return bit;
    }
    std::uint32_t Bits(std::int32_t count) {
        std::uint32_t value = 0;
        for (std::int32_t i = 0; i < count; ++i) {
            value += Bit() << (static_cast<std::uint32_t>(count - 1 - i) & 31U);
        }
        return value;
    }
    std::uint32_t Ue() {
        std::uint32_t count = 0;
        while (at_ / 8 < limit_ && Bit() == 0) {
            ++count;
        }
        std::uint32_t value = 0;
        for (std::uint32_t i = 0; i < count && at_ / 8 < limit_; ++i) {
            value += Bit() << ((count - 1 - i) & 31U);
        }
        return (std::uint32_t{1} << (count & 31U)) - 1 + value;
    }
    [[nodiscard]] std::size_t Place() const { return at_; }

  private:
    ByteView bytes_;
    std::size_t limit_;
    std::size_t at_ = 0;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    fuzz::Input input(data, size);
    const std::size_t limit = input.Big16();
    const ByteView operations = input.Block();
    const ByteView bytes = input.Rest();
    BitReader in(bytes, 0, limit);
    PlainReader plain(bytes, limit < bytes.size() ? limit : bytes.size());
    for (const std::uint8_t operation : operations) {
        if (operation == 0) {
            Demand(in.ReadBit() == plain.Bit());
        } else if (operation < 128) {
            Demand(in.ReadBits(operation - 2) == plain.Bits(operation - 2));
        } else {
            Demand(in.ReadUe() == plain.Ue());
        }
        Demand(in.BytePosition() * 8 + in.BitPosition() == plain.Place());
        Demand(in.HasOverrun() == (plain.Place() > bytes.size() * 8));
    }
    return 0;
}
