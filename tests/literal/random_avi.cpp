#include "literal/random_avi.h"

#include <algorithm>
#include <array>
#include <string_view>

#include "literal/random_source.h"
#include "support/byte_builder.h"

namespace clipfix::test {

namespace {

constexpr std::uint32_t kRefill = 333333;

class AviMaker {
  public:
    explicit AviMaker(std::uint64_t seed) : random_(seed) {}

    ByteVector Make() {
        if (random_.OneIn(4)) {
            Junk(random_.Below(2000));
        }
        if (!random_.OneIn(10)) {
            out_.Text("RIFF").Little32(random_.Below(1U << 20U)).Text("AVI ");
        }
        Headers();
        if (random_.OneIn(3)) {
            PadChunk();
        }
        Data();
        Damage();
        return bytes_;
    }

  private:
    void Junk(std::size_t count) { out_.Bytes(random_.Bytes(count)); }

    void PadChunk() {
        // Brings what follows near a multiple of the buffer, or far over one.
        std::uint32_t size = random_.Below(4000);
        if (random_.OneIn(2)) {
            const auto at = static_cast<std::uint32_t>((out_.Size() + 8) % kRefill);
            size = kRefill - at + random_.Below(80) - 40;
        } else if (random_.OneIn(3)) {
            size = random_.Below(800000);
        }
        out_.Text("JUNK").Little32(size);
        if (random_.OneIn(2)) {
            out_.Zeros(size);
        } else {
            Junk(size);
        }
    }

    void Headers() {
        ByteBuilder list;
        list.Text("hdrl").Text("avih").Little32(random_.OneIn(8) ? random_.Below(99) : 56U);
        list.Little32(random_.OneIn(3) ? random_.Below(4000) : 40000U);
        list.Little32(random_.OneIn(2) ? 0U : 1000U)
            .Little32(0)
            .Little32(random_.OneIn(2) ? 0x110U : 0x10U);
        list.Little32(random_.Below(500)).Little32(random_.Below(2)).Little32(2).Little32(0);
        list.Little32(random_.OneIn(3) ? 0U : 320U).Little32(random_.OneIn(3) ? 0U : 240U);
        list.Zeros(16);
        const std::uint32_t streams = random_.OneIn(8) ? random_.Below(4) : 2U;
        const bool odml = random_.OneIn(5);
        if (!random_.OneIn(9)) {
            out_.Text("LIST").Little32(static_cast<std::uint32_t>(list.Size())).Bytes(list.View());
        }
        for (std::uint32_t i = 0; i < streams; ++i) {
            Stream(random_.OneIn(12) ? random_.Below(3) : i % 2);
        }
        if (odml) {
            out_.Text("LIST").Little32(260).Text("odml").Text("dmlh").Little32(248).Zeros(248);
        }
        if (random_.OneIn(4)) {
            const ByteVector text = random_.Bytes(random_.Below(60) * 2);
            out_.Text("LIST").Little32(static_cast<std::uint32_t>(text.size() + 4)).Text("INFO");
            out_.Bytes(text);
            if (random_.OneIn(2)) {
                out_.Text("JUNK").Little32(8).Zeros(8);
            }
        }
    }

    void Stream(std::uint32_t kind) {
        constexpr std::array<std::string_view, 3> kTypes{"vids", "auds", "txts"};
        constexpr std::array<std::string_view, 6> kHandlers{
            "xvid", "mjpg", "MSVC", "DIB ", "DIVX", std::string_view("\0\0\0\0", 4)};
        ByteBuilder list;
        list.Text("strl").Text("strh").Little32(random_.OneIn(9) ? 48U : 56U);
        list.Text(kTypes[kind])
            .Text(kHandlers[random_.Below(6)])
            .Zeros(28)
            .Little32(random_.Below(900))
            .Zeros(16);
        list.Text(random_.OneIn(20) ? "strx" : "strf");
        constexpr std::array<std::uint32_t, 8> kSizes{40, 16, 18,          41,
                                                      50, 30, 0xFFFFFFF0U, 0x7FFFFFFFU};
        const std::uint32_t size =
            random_.OneIn(3) ? kSizes[random_.Below(8)] : (kind == 0 ? 40U : 16U);
        list.Little32(size);
        list.Little32(random_.OneIn(4) ? 0U : 40U)
            .Little32(random_.Below(700))
            .Little32(random_.Below(500));
        list.Little16(random_.OneIn(2) ? 0 : 1).Little16(random_.OneIn(2) ? 0 : 24);
        if (random_.OneIn(2)) {
            list.Little32(0);
        } else {
            list.Text("XVID");
        }
        list.Zeros(kind == 0 ? 20 : 0);
        if (random_.OneIn(4)) {
            list.Text("strn").Little32(6).Text("video\0");
        }
        if (random_.OneIn(4)) {
            list.Text("indx").Little32(24).Zeros(24);
        }
        if (random_.OneIn(5)) {
            list.Text("JUNK").Little32(random_.Below(40)).Zeros(20);
        }
        out_.Text("LIST").Little32(static_cast<std::uint32_t>(list.Size())).Bytes(list.View());
    }

    std::uint32_t ChunkSize() {
        switch (random_.Below(12)) {
            case 0:
                return 0;
            case 1:
                return 16;
            case 2:
                return random_.Below(1000000);
            case 3: {
                // Ends, or has its follower's head, near the end of the buffer.
                const std::uint32_t at = static_cast<std::uint32_t>(out_.Size()) % kRefill;
                return kRefill - at + random_.Below(64) - 32;
            }
            case 4:
                return kRefill * (1 + random_.Below(3)) + random_.Below(64) - 32;
            default:
                return random_.Below(4000);
        }
    }

    void Chunk() {
        constexpr std::array<std::string_view, 8> kIds{"00dc", "01wb", "00db", "00xx",
                                                       "01wb", "00dc", "ix00", "0adc"};
        const std::string_view id = kIds[random_.Below(random_.OneIn(6) ? 8 : 4)];
        const std::uint32_t size = ChunkSize();
        out_.Text(id).Little32(random_.OneIn(60) ? static_cast<std::uint32_t>(random_.Next())
                                                 : size);
        const std::size_t real = std::min<std::size_t>(size, 1100000) + size % 2;
        if (random_.OneIn(3)) {
            out_.Fill(real, static_cast<std::uint8_t>(random_.Below(256)));
        } else {
            Junk(real);
        }
    }

    void Data() {
        const std::uint32_t lists = random_.OneIn(5) ? 2 : 1;
        for (std::uint32_t i = 0; i < lists; ++i) {
            if (i == 1) {
                out_.Text("RIFF").Little32(0).Text("AVIX");
            }
            if (!random_.OneIn(8)) {
                out_.Text("LIST").Little32(random_.Below(1U << 20U));
            }
            if (!random_.OneIn(8)) {
                out_.Text("movi");
            }
            const std::uint32_t chunks = random_.Below(14);
            for (std::uint32_t n = 0; n < chunks && out_.Size() < 1600000; ++n) {
                if (random_.OneIn(9)) {
                    out_.Text("LIST").Little32(100).Text("rec ");
                }
                if (random_.OneIn(11)) {
                    PadChunk();
                }
                Chunk();
            }
            if (!random_.OneIn(3)) {
                Index(chunks);
            }
        }
        if (random_.OneIn(3)) {
            Junk(random_.Below(40));
        }
    }

    void Index(std::uint32_t records) {
        out_.Text("idx1").Little32(16 * records);
        for (std::uint32_t i = 0; i < records; ++i) {
            out_.Text(random_.OneIn(2) ? "00dc" : "01wb").Little32(random_.OneIn(3) ? 0U : 0x10U);
            out_.Little32(random_.Below(1U << 20U)).Little32(random_.Below(5000));
        }
    }

    void Damage() {
        bytes_ = out_.Take();
        const std::uint32_t wounds = random_.OneIn(3) ? 0 : random_.Below(6);
        for (std::uint32_t i = 0; i < wounds && !bytes_.empty(); ++i) {
            Wound();
        }
    }

    void Wound() {
        constexpr std::array<std::string_view, 14> kWords{"RIFF", "AVI ", "LIST", "JUNK",    "movi",
                                                          "idx1", "vids", "auds", "00dc",    "01wb",
                                                          "strf", "indx", "odml", "LISTstrl"};
        const auto size = static_cast<std::uint32_t>(bytes_.size());
        // Headers are few and worth as many wounds as all the data.
        const std::uint32_t at =
            random_.OneIn(2) ? random_.Below(std::min(size, 700U)) : random_.Below(size);
        const std::uint32_t length =
            std::min(size - at, random_.OneIn(3) ? random_.Below(9000) : random_.Below(40));
        const auto from = bytes_.begin() + at;
        switch (random_.Below(7)) {
            case 0:
                std::fill_n(from, length, std::uint8_t{0});
                break;
            case 1: {
                const ByteVector noise = random_.Bytes(length);
                std::copy(noise.begin(), noise.end(), from);
                break;
            }
            case 2:
                bytes_.erase(from, from + length);
                break;
            case 3: {
                const ByteVector noise = random_.Bytes(length);
                bytes_.insert(from, noise.begin(), noise.end());
                break;
            }
            case 4:
                if (random_.OneIn(4)) {
                    bytes_.resize(at);
                }
                break;
            case 5: {
                const std::string_view word = kWords[random_.Below(14)];
                if (size - at >= word.size()) {
                    std::copy(word.begin(), word.end(), from);
                }
                break;
            }
            default:
                StoreLittle32(
                    bytes_, at,
                    random_.OneIn(2) ? 0xFFFFFFF0U + random_.Below(16) : random_.Below(400000));
                break;
        }
    }

    RandomSource random_;
    ByteBuilder out_;
    ByteVector bytes_;
};

}  // namespace

ByteVector RandomDamagedAvi(std::uint64_t seed) {
    return AviMaker(seed).Make();
}

}  // namespace clipfix::test
