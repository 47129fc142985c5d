#include "repairavi/file_heads.h"

#include "repairavi/thumbnail.h"

namespace clipfix {

namespace {

constexpr FourLetters kAvih = {'a', 'v', 'i', 'h'};
constexpr std::uint32_t kAvihSize = 56;
// The list's head, its type, and the `avih` chunk.
constexpr std::uint64_t kMainHeaderBlock = 76;
constexpr std::uint32_t kUsualFrameTime = 41666;  // microseconds

// Makes a 32-bit field hold `value` where `wrong` says that it does not hold what it should.
template <typename Test>
void MendField(Pass& pass, std::int64_t at, std::uint32_t value, Test wrong) {
    if (wrong(pass.sBuffer.Little32(pass.B(at)))) {
        pass.sBuffer.StoreLittle32(pass.B(at), value);
    }
}

ByteVector DefaultMainHeader() {
    ByteVector block;
    AppendBytes(block, LIST_AVI);
    AppendLittle32(block, 0);  // the list's size, patched at the end
    AppendText(block, "hdrlavih");
    AppendLittle32(block, kAvihSize);
    AppendLittle32(block, kUsualFrameTime);
    AppendLittle32(block, 3241472);     // dwMaxBytesPerSec
    AppendLittle32(block, 0);           // dwPaddingGranularity
    AppendLittle32(block, 0x00010010);  // dwFlags
    AppendLittle32(block, 0);           // dwTotalFrames, patched at the end
    AppendLittle32(block, 0);           // dwInitialFrames
    AppendLittle32(block, 2);           // dwStreams, patched at the end
    AppendLittle32(block, 633600);      // dwSuggestedBufferSize
    AppendLittle32(block, 1280);        // dwWidth
    AppendLittle32(block, 720);         // dwHeight
    AppendZeros(block, 16);             // dwReserved
    return block;
}

void RepairMainHeader(Pass& pass) {
    constexpr std::uint32_t kSlowestBelievedNot = 3000;  // a frame time of this or less is none
    constexpr std::uint8_t kHasIndex = 0x10;
    const auto differsFrom = [](std::uint32_t value) {
        return [value](std::uint32_t found) { return found != value; };
    };
    const auto isZero = [](std::uint32_t found) { return found == 0; };

    if (!pass.sBuffer.Matches(pass.B(12), kAvih)) {
        pass.sBuffer.Store(pass.B(12), kAvih);
    }
    MendField(pass, 16, kAvihSize, differsFrom(kAvihSize));
    pass.job.state.g_dwAviMicroSecPerFrame = pass.sBuffer.Little32(pass.B(20));
    MendField(pass, 20, kUsualFrameTime,
              [](std::uint32_t found) { return found <= kSlowestBelievedNot; });
    // dwMaxBytesPerSec: the constant of the size field and not a rate, and that is meant.
    MendField(pass, 24, kAvihSize, isZero);
    // dwFlags: the lowest byte only; the three above it stay as they are.
    if (pass.sBuffer.Byte(pass.B(32)) != kHasIndex) {
        pass.sBuffer.Store(pass.B(32), std::array{kHasIndex});
    }
    MendField(pass, 40, 0, differsFrom(0));  // dwInitialFrames
    MendField(pass, 52, 320, isZero);        // dwWidth
    MendField(pass, 56, 256, isZero);        // dwHeight
}

}  // namespace

Next OnRiff(Pass& pass) {
    if (pass.bRiffSeen) {
        return pass.Advance(1);
    }
    JobState& state = pass.job.state;
    // By the path's last letter, so for `.avi` and neither for `.divx` nor for `.xvid`.
    if (!state.g_strCorruptCopy.empty() &&
        (state.g_strCorruptCopy.back() == 'i' || state.g_strCorruptCopy.back() == 'I')) {
        ExtractThumbnail(pass);
    }
    // In a well-formed file the fccHandler of the first stream header, and dwMicroSecPerFrame.
    const auto codec = pass.sBuffer.Bytes<4>(pass.B(112));
    state.g_szAviCodec.assign(codec.begin(), codec.end());
    state.g_dwAviMicroSecPerFrame = pass.sBuffer.Little32(pass.B(32));
    pass.bRiffSeen = true;
    pass.sBuffer.AppendTo(pass.repaired, pass.B(0), 8);
    return pass.Advance(4);
}

Next OnAvi(Pass& pass) {
    if (pass.bAviSeen) {
        return pass.Advance(1);
    }
    MakeSureOfRiffHead(pass);
    MakeSureOfAviWord(pass);
    return pass.Advance(4);
}

void MakeSureOfRiffHead(Pass& pass) {
    if (!pass.bRiffSeen) {
        pass.bRiffSeen = true;
        pass.repaired.Append(RIFF_AVI);
        pass.repaired.Append(FourLetters{});
    }
}

void MakeSureOfAviWord(Pass& pass) {
    if (!pass.bAviSeen) {
        pass.bAviSeen = true;
        pass.repaired.Append(AVI0_AVI);
        pass.GrowRiff(4);
    }
}

void MakeSureOfMainHeader(Pass& pass) {
    if (!pass.bHdrlSeen) {
        pass.bHdrlSeen = true;
        pass.repaired.Append(DefaultMainHeader());
        pass.GrowRiff(kMainHeaderBlock);
    }
}

Next OnHdrlList(Pass& pass) {
    if (pass.bHdrlSeen) {
        return pass.Advance(1);
    }
    pass.bHdrlSeen = true;
    RepairMainHeader(pass);
    pass.dwAvihWidth = pass.sBuffer.Little32(pass.B(52));
    pass.dwAvihHeight = pass.sBuffer.Little32(pass.B(56));
    pass.sBuffer.AppendTo(pass.repaired, pass.B(0), kMainHeaderBlock);
    pass.GrowRiff(kMainHeaderBlock);
    return pass.Advance(kMainHeaderBlock);
}

}  // namespace clipfix
