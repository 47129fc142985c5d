#include "literal/literal_avi.h"

#include <algorithm>
#include <set>
#include <string_view>
#include <tuple>

namespace clipfix::test {

namespace {

constexpr std::uint32_t kBuffer = 333333;

struct GiveUp {};
struct Standstill {};

// A file in memory with one pointer, grown by zeros.
struct MemoryOutput {
    ByteVector bytes;
    std::uint64_t pointer = 0;

    void Write(ByteView data) {
        if (bytes.size() < pointer + data.size()) {
            bytes.resize(static_cast<std::size_t>(pointer + data.size()));
        }
        std::copy(data.begin(), data.end(), bytes.begin() + static_cast<std::ptrdiff_t>(pointer));
        pointer += data.size();
    }
    void Write32(std::uint32_t value) {
        ByteVector four;
        AppendLittle32(four, value);
        Write(four);
    }
    void WriteText(std::string_view text) {
        ByteVector letters;
        AppendText(letters, text);
        Write(letters);
    }
};

class LiteralPass {
  public:
    LiteralPass(ByteView damaged, bool takesThumbnail)
        : damaged_(damaged), takesThumbnail_(takesThumbnail), sBuffer_(kBuffer, 0) {}

    LiteralAviResult Run() {
        try {
            index_.WriteText("idx1");
            index_.Write32(0);
            if (damaged_.size() <= 100) {
                throw GiveUp{};
            }
            Read();
            Scan();
            Finish();
            r_.result = 1;
            r_.output = out_.bytes;
        } catch (const GiveUp&) {
            r_.result = 0;
        } catch (const Standstill&) {
            r_.standsStill = true;
        }
        return r_;
    }

  private:
    // --- the buffer and the damaged file ---
    void Read() {
        std::fill(sBuffer_.begin(), sBuffer_.end(), std::uint8_t{0});
        const ByteView part =
            filePointer_ >= damaged_.size()
                ? ByteView{}
                : SubView(damaged_, static_cast<std::size_t>(filePointer_), kBuffer);
        std::copy(part.begin(), part.end(), sBuffer_.begin());
        dwBytesRead_ = static_cast<std::uint32_t>(part.size());
        filePointer_ += part.size();
    }
    void Refill(std::uint64_t at) {
        filePointer_ = at;
        Read();
    }
    // An index relative to nBufferPos, in 32 bits.
    [[nodiscard]] std::uint32_t At(std::int64_t n) const {
        return nBufferPos_ + static_cast<std::uint32_t>(n);
    }
    [[nodiscard]] bool Inside(std::int64_t n) const {
        return n >= 0 ? At(n) < kBuffer && At(n) >= nBufferPos_
                      : static_cast<std::int64_t>(nBufferPos_) + n >= 0;
    }
    [[nodiscard]] std::uint8_t B(std::int64_t n) const {
        return Inside(n) ? sBuffer_[At(n)] : std::uint8_t{0};
    }
    [[nodiscard]] std::uint32_t B32(std::int64_t n) const {
        std::uint32_t value = 0;
        for (int i = 0; i < 4; ++i) {
            value |= static_cast<std::uint32_t>(B(n + i)) << (8 * i);
        }
        return value;
    }
    [[nodiscard]] bool Is(std::int64_t n, std::string_view text) const {
        for (std::size_t i = 0; i < text.size(); ++i) {
            const auto at = n + static_cast<std::int64_t>(i);
            if (!Inside(at) || sBuffer_[At(at)] != static_cast<std::uint8_t>(text[i])) {
                return false;
            }
        }
        return true;
    }
    [[nodiscard]] bool IsDigit(std::int64_t n) const {
        return Inside(n) && sBuffer_[At(n)] >= '0' && sBuffer_[At(n)] <= '9';
    }
    void Put(std::int64_t n, std::uint8_t value) {
        if (Inside(n)) {
            sBuffer_[At(n)] = value;
        }
    }
    void Put32(std::int64_t n, std::uint32_t value) {
        for (int i = 0; i < 4; ++i) {
            Put(n + i, static_cast<std::uint8_t>(value >> (8 * i)));
        }
    }
    void PutText(std::int64_t n, std::string_view text) {
        for (std::size_t i = 0; i < text.size(); ++i) {
            Put(n + static_cast<std::int64_t>(i), static_cast<std::uint8_t>(text[i]));
        }
    }
    // In absolute buffer positions.
    [[nodiscard]] bool BufferIs(std::uint64_t at, std::string_view text) const {
        for (std::size_t i = 0; i < text.size(); ++i) {
            if (at + i >= kBuffer ||
                sBuffer_[static_cast<std::size_t>(at + i)] != static_cast<std::uint8_t>(text[i])) {
                return false;
            }
        }
        return true;
    }
    // Writes `count` bytes from B[n] on to the output.
    void WriteFromBuffer(std::int64_t n, std::uint64_t count) {
        ByteVector bytes(static_cast<std::size_t>(count));
        for (std::uint64_t i = 0; i < count; ++i) {
            bytes[static_cast<std::size_t>(i)] = B(n + static_cast<std::int64_t>(i));
        }
        out_.Write(bytes);
    }

    void Percent() {
        const std::uint64_t size = damaged_.size();
        const auto value = static_cast<std::uint32_t>(ullOffset_ / ((size + 2048) / 100));
        r_.percent = static_cast<int>(value);
        if (r_.percent != lastSent_) {
            lastSent_ = r_.percent;
            r_.percents.push_back(r_.percent);
        }
    }

    // --- the scan ---
    void Scan() {
        while (ullOffset_ < damaged_.size()) {
            if ((ullOffset_ - 1) % kBuffer == 0) {
                ullBufferBase_ = ullOffset_;
                Refill(ullBufferBase_);
            }
            nBufferPos_ = static_cast<std::uint32_t>((ullOffset_ - ullBufferBase_) % kBuffer);
            if (Is(0, "RIFF")) {
                Riff();
            } else if (Is(0, "AVI ")) {
                AviWord();
            } else if (Is(0, "LIST")) {
                List();
            } else if (Is(0, "JUNK")) {
                const std::uint64_t size = B32(4);
                ullOffset_ += ullOffset_ + size >= damaged_.size() ? 1 : size + 8;
            } else if (Is(0, "movi")) {
                MoviWord();
            } else if (Is(0, "idx1")) {
                ullOffset_ += 16;
            } else if (Is(0, "vids") || Is(0, "auds")) {
                ullOffset_ += 1;
            } else if (Is(0, "dc") || Is(0, "db") || Is(0, "xx") || Is(0, "wb")) {
                TagRoute();
            } else {
                ullOffset_ += 1;
                Percent();
            }
        }
    }

    void MadeUpRiff() {
        bRiffSeen_ = true;
        out_.WriteText("RIFF");
        out_.Write32(0);
    }
    void MadeUpAvi() {
        bAviSeen_ = true;
        out_.WriteText("AVI ");
        r_.riffBody += 4;
    }
    void MakeSureOfHeads() {
        if (!bRiffSeen_) {
            MadeUpRiff();
        }
        if (!bAviSeen_) {
            MadeUpAvi();
        }
    }
    void DefaultHeader() {
        bHdrlSeen_ = true;
        out_.WriteText("LIST");
        out_.Write32(0);
        out_.WriteText("hdrl");
        out_.WriteText("avih");
        for (const std::uint32_t value : {56U, 41666U, 3241472U, 0U, 0x00010010U, 0U, 0U, 2U,
                                          633600U, 1280U, 720U, 0U, 0U, 0U, 0U}) {
            out_.Write32(value);
        }
        r_.riffBody += 76;
    }

    void Riff() {
        if (bRiffSeen_) {
            ullOffset_ += 1;
            return;
        }
        if (takesThumbnail_) {
            Thumbnail();
        }
        r_.codec = {static_cast<char>(B(112)), static_cast<char>(B(113)), static_cast<char>(B(114)),
                    static_cast<char>(B(115))};
        r_.microSecPerFrame = B32(32);
        bRiffSeen_ = true;
        WriteFromBuffer(0, 8);
        ullOffset_ += 4;
    }

    void Thumbnail() {
        const std::uint32_t limit = kBuffer - nBufferPos_;
        for (std::uint32_t i = nBufferPos_; i < limit; ++i) {
            if (!BufferIs(i, "\xFF\xD8\xFF")) {
                continue;
            }
            std::uint32_t j = i;
            while (static_cast<std::int64_t>(j) <
                       static_cast<std::int64_t>(limit) - static_cast<std::int64_t>(i) &&
                   !BufferIs(j, "\xFF\xD9")) {
                ++j;
            }
            for (std::uint32_t at = i; at < j + 3; ++at) {
                r_.thumbnail.push_back(at < kBuffer ? sBuffer_[at] : std::uint8_t{0});
            }
            return;
        }
    }

    void AviWord() {
        if (bAviSeen_) {
            ullOffset_ += 1;
            return;
        }
        if (!bRiffSeen_) {
            MadeUpRiff();
        }
        ullOffset_ += 4;
        MadeUpAvi();
    }

    void List() {
        MakeSureOfHeads();
        const std::uint32_t size = B32(4);
        if (Is(8, "hdrl")) {
            Hdrl();
        } else if (Is(8, "strl")) {
            Strl();
        } else if (Is(8, "INFO")) {
            Info(size);
        } else if (Is(8, "movi")) {
            ListMovi();
        } else {
            ullOffset_ += 1;
        }
    }

    void Hdrl() {
        if (bHdrlSeen_) {
            ullOffset_ += 1;
            return;
        }
        bHdrlSeen_ = true;
        PutText(12, "avih");
        Put32(16, 56);
        r_.microSecPerFrame = B32(20);
        if (B32(20) <= 3000) {
            Put32(20, 41666);
        }
        if (B32(24) == 0) {
            Put32(24, 56);
        }
        Put(32, 0x10);
        Put32(40, 0);
        if (B32(52) == 0) {
            Put32(52, 320);
        }
        if (B32(56) == 0) {
            Put32(56, 256);
        }
        dwAvihWidth_ = B32(52);
        dwAvihHeight_ = B32(56);
        WriteFromBuffer(0, 76);
        ullOffset_ += 76;
        r_.riffBody += 76;
    }

    [[nodiscard]] bool LetterAt(std::uint32_t position) const {
        return position < kBuffer && ((sBuffer_[position] >= 'A' && sBuffer_[position] <= 'Z') ||
                                      (sBuffer_[position] >= 'a' && sBuffer_[position] <= 'z'));
    }

    void Strl() {
        nStreams_ += 1;
        bThisVideo_ = bThisAudio_ = false;
        if (Is(20, "vids")) {
            bHasVideo_ = bThisVideo_ = true;
            r_.codec = {static_cast<char>(B(24)), static_cast<char>(B(25)),
                        static_cast<char>(B(26)), static_cast<char>(B(27))};
        }
        if (Is(20, "auds")) {
            if (!bHasVideo_) {
                throw GiveUp{};
            }
            bHasAudio_ = bThisAudio_ = true;
        }
        const std::uint32_t handler = B32(24);
        if (!bHdrlSeen_) {
            DefaultHeader();
        }
        bStrlSeen_ = true;
        PutText(12, "strh");
        Put32(16, 56);
        if (!Is(76, "strf")) {
            throw GiveUp{};
        }
        if (bThisVideo_) {
            RepairVideoFormat(handler);
        }
        if (bThisAudio_) {
            Put32(16, 56);
            Put32(80, 16);
        }
        const std::uint32_t a = WalkStrl();
        WriteFromBuffer(0, static_cast<std::uint32_t>(a - 4));
        const std::uint32_t length = a - 12;
        out_.pointer = r_.riffBody + 12;
        out_.Write32(length);
        out_.pointer = out_.bytes.size();
        ullOffset_ += length;
        r_.riffBody += std::uint64_t{length} + 8;
        ullBufferBase_ = ullOffset_;
        Refill(ullBufferBase_);
    }

    static constexpr std::uint32_t Code(const char (&text)[5]) {
        return static_cast<std::uint32_t>(static_cast<std::uint8_t>(text[0])) |
               static_cast<std::uint32_t>(static_cast<std::uint8_t>(text[1])) << 8U |
               static_cast<std::uint32_t>(static_cast<std::uint8_t>(text[2])) << 16U |
               static_cast<std::uint32_t>(static_cast<std::uint8_t>(text[3])) << 24U;
    }

    void RepairVideoFormat(std::uint32_t handler) {
        const std::uint32_t size = B32(80);
        if (size != 40 && !LetterAt(nBufferPos_ + size + 84)) {
            Put32(80, 40);
        }
        Put32(84, 40);
        if (B32(88) < dwAvihWidth_) {
            Put32(88, dwAvihWidth_);
        }
        if (B32(92) < dwAvihHeight_) {
            Put32(92, dwAvihHeight_);
        }
        if (B(96) == 0 && B(97) == 0) {
            Put(96, 1);
            Put(97, 0);
        }
        if (B(98) == 0 && B(99) == 0) {
            Put(98, 24);
            Put(99, 0);
        }
        const std::uint32_t compression = B32(100);
        if (handler == Code("mjpg") && compression != Code("MJPG")) {
            PutText(100, "MJPG");
        }
        if (handler != Code("mjpg") && handler != 0 && compression == 0 &&
            handler != Code("MSVC") && handler != Code("msvc") && handler != Code("DIB ")) {
            Put32(100, handler);
        }
        if (handler == 0 && compression == 0) {
            throw GiveUp{};
        }
    }

    std::uint32_t WalkStrl() {
        std::uint32_t a = 80;
        std::uint32_t n = 80;
        bool junk = false;
        std::set<std::tuple<std::uint32_t, std::uint32_t, bool>> seen;
        while (n < kBuffer) {
            if (!seen.emplace(a, n, junk).second) {
                throw Standstill{};
            }
            const auto walk = static_cast<std::int64_t>(a);
            if (Is(walk - 4, "JUNK")) {
                junk = true;
            }
            std::uint32_t s = B32(walk) + 4;
            if (s % 2 == 1) {
                s += 1;
            }
            const std::uint32_t q = nBufferPos_ + a + s;
            if (q >= kBuffer) {
                n += 1;
                continue;
            }
            if (LetterAt(q)) {
                if (junk) {
                    junk = false;
                    if (BufferIs(q, "LIST")) {
                        return a;
                    }
                    n += s + 4;
                } else if (BufferIs(q, "LIST")) {
                    return a + s + 4;
                } else {
                    a += s + 4;
                    n += s + 4;
                }
                continue;
            }
            if (!Is(walk - 4, "strf")) {
                return a;
            }
            const std::uint32_t z = B32(walk);
            const std::uint32_t right = bThisVideo_ ? 40 : 16;
            if (bThisVideo_ || bThisAudio_) {
                if (z != right) {
                    Put32(walk, right);
                    seen.clear();
                }
                a += z + 8;
                n += z + 8;
            }
        }
        return a;
    }

    void Info(std::uint32_t size) {
        if (bInfoSeen_ || bInMovi_) {
            ullOffset_ += 1;
            return;
        }
        if (!bHdrlSeen_) {
            DefaultHeader();
        }
        bInfoSeen_ = true;
        const std::int64_t behind = static_cast<std::int64_t>(size) + 8;
        if (ullOffset_ + size + 8 > damaged_.size() ||
            !(Is(behind, "JUNK") || Is(behind, "LIST"))) {
            ullOffset_ += 1;
            return;
        }
        WriteFromBuffer(0, std::uint64_t{size} + 8);
        ullOffset_ += size;
        r_.riffBody += std::uint64_t{size} + 8;
        ullBufferBase_ = ullOffset_;
        Refill(ullBufferBase_);
    }

    void ListMovi() {
        if (bMoviListSeen_) {
            ullOffset_ += 1;
            return;
        }
        if (!bHdrlSeen_) {
            DefaultHeader();
        }
        dwHdrlBody_ = static_cast<std::uint32_t>(r_.riffBody - 12);
        bMoviListSeen_ = bStrlSeen_ = bHdrlSeen_ = true;
        ullMoviListPos_ = r_.riffBody + 8;
        ullOffset_ += 8;
        r_.riffBody += 8;
        dwMoviBody_ += 4;
        WriteFromBuffer(0, 8);
    }

    void MadeUpMoviList() {
        out_.WriteText("LIST");
        out_.Write32(0);
        dwHdrlBody_ = static_cast<std::uint32_t>(r_.riffBody - 12);
        r_.riffBody += 8;
        ullMoviListPos_ = r_.riffBody;
    }

    void OpenData() {
        bInMovi_ = true;
        out_.WriteText("movi");
        dwRelOffset_ = 4;
        r_.riffBody += 4;
    }

    void MoviWord() {
        if (bInMovi_) {
            ullOffset_ += 1;
            return;
        }
        if (!bStrlSeen_) {
            throw GiveUp{};
        }
        dwRelOffset_ = 0;
        MakeSureOfHeads();
        if (!bHdrlSeen_) {
            DefaultHeader();
        }
        if (!bMoviListSeen_) {
            MadeUpMoviList();
            bMoviListSeen_ = bHdrlSeen_ = bStrlSeen_ = true;
            dwMoviBody_ += 4;
        }
        FirstChunkRoute();
    }

    [[nodiscard]] bool PassesAt(std::uint64_t at, bool withXx, bool withJunk) const {
        return BufferIs(at, "ix") || BufferIs(at, "id") || BufferIs(at + 2, "wb") ||
               BufferIs(at + 2, "db") || BufferIs(at + 2, "dc") ||
               (withXx && BufferIs(at + 2, "xx")) || (withJunk && BufferIs(at, "JUNK"));
    }

    void RefuseFirst(std::uint64_t advance) {
        OpenData();
        ullOffset_ += advance;
    }

    void Count(std::int64_t tag) {
        if (Is(tag, "wb")) {
            r_.audioChunks += 1;
        } else {
            r_.videoChunks += 1;
        }
    }

    void IndexRecord(std::int64_t id) {
        ByteVector record;
        for (int i = 0; i < 4; ++i) {
            record.push_back(B(id + i));
        }
        AppendLittle32(record, 0x10);
        AppendLittle32(record, dwRelOffset_);
        AppendLittle32(record, dwChunkSize_ - (bOddChunk_ ? 1 : 0));
        bOddChunk_ = false;
        index_.Write(record);
    }

    void FirstChunkRoute() {
        if (Is(4, "ix")) {
            RefuseFirst(4);
            return;
        }
        if (!IsDigit(4) || !IsDigit(5)) {
            RefuseFirst(1);
            return;
        }
        if (!Is(6, "dc") && !Is(6, "db") && !Is(6, "xx") && !Is(6, "wb")) {
            RefuseFirst(4);
            return;
        }
        dwChunkSize_ = B32(8);
        if (dwChunkSize_ % 2 == 1) {
            dwChunkSize_ += 1;
            bOddChunk_ = true;
        }
        if (dwChunkSize_ == 16 && !bOddChunk_ && Inside(21) && B32(18) == 16) {
            RefuseFirst(16);
            return;
        }
        if (ullOffset_ + dwChunkSize_ + 8 >= damaged_.size()) {
            RefuseFirst(1);
            return;
        }
        if (!bNextChecked_) {
            const std::uint64_t next = std::uint64_t{nBufferPos_} + dwChunkSize_ + 12;
            if (static_cast<std::uint32_t>(dwChunkSize_ + 14) < kBuffer - nBufferPos_) {
                if (!PassesAt(next, false, false)) {
                    RefuseFirst(1);
                    return;
                }
            } else {
                Refill(ullBufferBase_ + next);
                const bool passes = PassesAt(0, true, false);
                Refill(ullBufferBase_);
                if (!passes) {
                    RefuseFirst(1);
                    return;
                }
                bNextChecked_ = true;
                return;
            }
        }
        bNextChecked_ = false;
        Count(6);
        bInMovi_ = true;
        dwRelOffset_ = 4;
        IndexRecord(4);
        dwRelOffset_ += dwChunkSize_ + 8;
        r_.riffBody += std::uint64_t{dwChunkSize_} + 12;
        dwMoviBody_ += dwChunkSize_ + 8;
        if (static_cast<std::uint32_t>(dwChunkSize_ + 12) < kBuffer - nBufferPos_) {
            WriteFromBuffer(0, std::uint64_t{dwChunkSize_} + 12);
            ullOffset_ += std::uint64_t{dwChunkSize_} + 12;
        } else {
            SpanningCopy(12);
        }
        Percent();
    }

    void TagRoute() {
        bThisVideo_ = !Is(0, "wb");
        bThisAudio_ = !bThisVideo_;
        const bool digits = IsDigit(-1) && IsDigit(-2);
        if ((bThisVideo_ && !bHasVideo_) || (bThisAudio_ && !bHasAudio_)) {
            if (digits) {
                r_.percent = 100;
                throw GiveUp{};
            }
            ullOffset_ += 1;
            return;
        }
        if (r_.riffBody >= 0xFFFFF060ULL) {
            throw GiveUp{};
        }
        if (!digits) {
            ullOffset_ += 1;
            return;
        }
        if (r_.videoChunks == 0 && r_.audioChunks == 0) {
            if (!bRiffSeen_ || !bAviSeen_ || !bHdrlSeen_) {
                throw GiveUp{};
            }
            if (!bMoviListSeen_) {
                MadeUpMoviList();
                bMoviListSeen_ = true;
            }
            if (!bInMovi_) {
                OpenData();
                dwMoviBody_ += 4;
            }
        }
        dwChunkSize_ = B32(2);
        if (dwChunkSize_ % 2 == 1) {
            dwChunkSize_ += 1;
            bOddChunk_ = true;
        }
        if (dwChunkSize_ == 16 && !bOddChunk_ && Inside(21) && B32(18) == 16) {
            ullOffset_ += 16;
            return;
        }
        if (ullOffset_ + dwChunkSize_ + 8 >= damaged_.size()) {
            ullOffset_ += 1;
            return;
        }
        if (!bNextChecked_) {
            const std::uint64_t next = std::uint64_t{nBufferPos_} + dwChunkSize_ + 6;
            if (static_cast<std::uint32_t>(dwChunkSize_ + 10) < kBuffer - nBufferPos_) {
                if (!PassesAt(next, true, true)) {
                    ullOffset_ += 1;
                    return;
                }
            } else {
                Refill(ullBufferBase_ + next);
                const bool passes = PassesAt(0, true, true);
                Refill(ullBufferBase_);
                if (passes) {
                    bNextChecked_ = true;
                } else {
                    ullOffset_ += 1;
                }
                return;
            }
        }
        bNextChecked_ = false;
        Count(0);
        IndexRecord(-2);
        dwRelOffset_ += dwChunkSize_ + 8;
        r_.riffBody += std::uint64_t{dwChunkSize_} + 8;
        dwMoviBody_ += dwChunkSize_ + 8;
        if (static_cast<std::uint32_t>(dwChunkSize_ + 6) < kBuffer - nBufferPos_) {
            WriteFromBuffer(-2, std::uint64_t{dwChunkSize_} + 8);
            ullOffset_ += std::uint64_t{dwChunkSize_} + 6;
        } else {
            SpanningCopy(6);
        }
        ullBufferBase_ = ullOffset_;
        Refill(ullBufferBase_);
        Percent();
    }

    void SpanningCopy(std::uint32_t k) {
        const std::uint32_t rest = dwBytesRead_ - nBufferPos_;
        if (k == 6) {
            WriteFromBuffer(-2, std::uint64_t{rest} + 2);
        } else {
            WriteFromBuffer(0, rest);
        }
        ullOffset_ += rest;
        const std::uint32_t whole = dwChunkSize_ + nBufferPos_ + k;
        const std::uint32_t toCome = whole - kBuffer;
        std::uint32_t c = 0;
        std::uint32_t m = 0;
        do {
            Read();
            ullBufferBase_ = ullOffset_;
            c += dwBytesRead_;
            m += 1;
            const std::uint32_t count = c > toCome ? whole - m * kBuffer : dwBytesRead_;
            ByteVector piece = sBuffer_;
            piece.resize(count);
            out_.Write(piece);
            ullOffset_ += count;
            Percent();
        } while (c <= toCome);
    }

    // --- finishing ---
    void Finish() {
        NeutraliseIndx();
        const std::uint32_t entries = 16 * r_.videoChunks + 16 * r_.audioChunks;
        index_.pointer = 4;
        index_.Write32(entries);
        out_.pointer = r_.riffBody + 8;
        out_.Write(index_.bytes);
        out_.bytes.resize(static_cast<std::size_t>(out_.pointer));
        r_.riffBody += std::uint64_t{entries} + 8;
        Patch(4, static_cast<std::uint32_t>(r_.riffBody));
        Patch(56, nStreams_);
        Patch(16, dwHdrlBody_);
        Patch(48, r_.videoChunks);
        Patch(140, r_.videoChunks);
        PatchAudioLength();
        Patch(ullMoviListPos_ + 4, dwMoviBody_);
        out_.bytes.resize(static_cast<std::uint32_t>(r_.riffBody + 8));
    }
    void NeutraliseIndx() {
        ByteVector head = out_.bytes;
        head.resize(kBuffer);
        for (std::size_t i = 0; i < 333329; ++i) {
            if (MatchesAt(head, i, "indx")) {
                out_.pointer = i;
                out_.WriteText("JUNK");
            } else if (MatchesAt(head, i, "odml")) {
                return;
            }
        }
    }
    void Patch(std::uint64_t at, std::uint32_t value) {
        out_.pointer = at;
        out_.Write32(value);
    }
    void PatchAudioLength() {
        ByteVector head = out_.bytes;
        head.resize(kBuffer);
        for (std::size_t i = 0xB0; i < 333327; ++i) {
            if (MatchesAt(head, i, "auds")) {
                if (i < 333323) {
                    Patch(i + 32, r_.audioChunks);
                }
                return;
            }
        }
    }

    ByteView damaged_;
    bool takesThumbnail_;
    LiteralAviResult r_;
    ByteVector sBuffer_;
    std::uint64_t filePointer_ = 0;
    std::uint32_t dwBytesRead_ = 0;
    MemoryOutput out_;
    MemoryOutput index_;
    int lastSent_ = 0;

    std::uint64_t ullOffset_ = 0;
    std::uint64_t ullBufferBase_ = 0;
    std::uint32_t nBufferPos_ = 0;
    std::uint32_t dwHdrlBody_ = 0;
    std::uint64_t ullMoviListPos_ = 0;
    std::uint32_t dwMoviBody_ = 0;
    std::uint32_t dwRelOffset_ = 0;
    std::uint32_t nStreams_ = 0;
    std::uint32_t dwAvihWidth_ = 0;
    std::uint32_t dwAvihHeight_ = 0;
    std::uint32_t dwChunkSize_ = 0;
    bool bRiffSeen_ = false;
    bool bAviSeen_ = false;
    bool bHdrlSeen_ = false;
    bool bStrlSeen_ = false;
    bool bInfoSeen_ = false;
    bool bMoviListSeen_ = false;
    bool bInMovi_ = false;
    bool bHasVideo_ = false;
    bool bHasAudio_ = false;
    bool bThisVideo_ = false;
    bool bThisAudio_ = false;
    bool bOddChunk_ = false;
    bool bNextChecked_ = false;
};

}  // namespace

LiteralAviResult LiteralAviRepair(ByteView damaged, bool takesThumbnail) {
    return LiteralPass(damaged, takesThumbnail).Run();
}

}  // namespace clipfix::test
