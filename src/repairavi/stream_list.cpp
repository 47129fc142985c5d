#include "repairavi/stream_list.h"

#include "repairavi/file_heads.h"
#include "repairavi/stream_list_walk.h"

namespace clipfix {

namespace {

constexpr FourLetters kStrh = {'s', 't', 'r', 'h'};
constexpr std::uint32_t kStrhSize = 56;

constexpr std::uint32_t kNoCode = 0;
constexpr std::uint32_t kHandlerMjpg = LetterNumber(FourLetters{'m', 'j', 'p', 'g'});
constexpr std::uint32_t kCompressionMjpg = LetterNumber(FourLetters{'M', 'J', 'P', 'G'});

// Handlers under which pictures may stand with no compression code.
constexpr bool MayHaveNoCompression(std::uint32_t handler) {
    return handler == LetterNumber(FourLetters{'M', 'S', 'V', 'C'}) ||
           handler == LetterNumber(FourLetters{'m', 's', 'v', 'c'}) ||
           handler == LetterNumber(FourLetters{'D', 'I', 'B', ' '});
}

void SetField(Pass& pass, std::int64_t at, std::uint32_t value) {
    pass.sBuffer.StoreLittle32(pass.B(at), value);
}

std::uint32_t Field(Pass& pass, std::int64_t at) {
    return pass.sBuffer.Little32(pass.B(at));
}

// Notes the stream's kind. False for a sound stream ahead of any picture stream, which is refused.
bool TakeStreamType(Pass& pass) {
    const auto type = pass.sBuffer.Bytes<4>(pass.B(20));
    pass.bThisVideo = false;
    pass.bThisAudio = false;
    if (type == vids_AVI) {
        pass.bHasVideo = true;
        pass.bThisVideo = true;
        const auto codec = pass.sBuffer.Bytes<4>(pass.B(24));
        pass.job.state.g_szAviCodec.assign(codec.begin(), codec.end());
    } else if (type == auds_AVI) {
        if (!pass.bHasVideo) {
            return false;
        }
        pass.bHasAudio = true;
        pass.bThisAudio = true;
    }
    return true;
}

void RepairStreamHeader(Pass& pass) {
    if (!pass.sBuffer.Matches(pass.B(12), kStrh)) {
        pass.sBuffer.Store(pass.B(12), kStrh);
    }
    if (Field(pass, 16) != kStrhSize) {
        SetField(pass, 16, kStrhSize);
    }
}

// A size other than 40 is believed when a letter stands where it says that the next chunk begins:
// larger formats with extra data pass so.
void RepairPictureFormatSize(Pass& pass) {
    const std::uint32_t size = Field(pass, 80);
    if (size == kPictureFormatSize) {
        return;
    }
    const std::uint32_t next = pass.nBufferPos + size + 84;
    if (next >= ScanBuffer::kSize || !IsAsciiLetter(pass.sBuffer.Byte(next))) {
        SetField(pass, 80, kPictureFormatSize);
    }
}

// False when neither handler nor compression tells what the pictures are.
bool RepairCompression(Pass& pass) {
    const std::uint32_t compression = Field(pass, 100);
    if (pass.dwHandler == kHandlerMjpg) {
        if (compression != kCompressionMjpg) {
            SetField(pass, 100, kCompressionMjpg);
        }
    } else if (compression == kNoCode) {
        if (pass.dwHandler == kNoCode) {
            return false;
        }
        if (!MayHaveNoCompression(pass.dwHandler)) {
            SetField(pass, 100, pass.dwHandler);
        }
    }
    return true;
}

bool RepairPictureFormat(Pass& pass) {
    RepairPictureFormatSize(pass);
    if (Field(pass, 84) != kPictureFormatSize) {  // biSize
        SetField(pass, 84, kPictureFormatSize);
    }
    // The picture is never made smaller than the main header says, and never larger than that.
    if (Field(pass, 88) < pass.dwAvihWidth) {
        SetField(pass, 88, pass.dwAvihWidth);
    }
    if (Field(pass, 92) < pass.dwAvihHeight) {
        SetField(pass, 92, pass.dwAvihHeight);
    }
    if (pass.sBuffer.Little16(pass.B(96)) == 0) {  // biPlanes
        pass.sBuffer.StoreLittle16(pass.B(96), 1);
    }
    if (pass.sBuffer.Little16(pass.B(98)) == 0) {  // biBitCount
        pass.sBuffer.StoreLittle16(pass.B(98), 24);
    }
    return RepairCompression(pass);
}

// A sound format is cut to its first 16 bytes, whatever follows them; the loss is accepted.
void RepairSoundFormat(Pass& pass) {
    if (Field(pass, 16) != kStrhSize) {
        SetField(pass, 16, kStrhSize);
    }
    if (Field(pass, 80) != kSoundFormatSize) {
        SetField(pass, 80, kSoundFormatSize);
    }
}

// Takes over the list up to the size field's chunk that the walk ended at. The place moves on by
// eight bytes less than that, so the block's last eight are looked at again; that is meant.
Next TakeBlock(Pass& pass, std::uint32_t a) {
    const std::uint64_t riffBody = pass.job.state.g_ullAviRiffBody;
    const std::uint32_t bodySize = a - 12;
    pass.sBuffer.AppendTo(pass.repaired, pass.B(0), a - 4);
    std::array<std::uint8_t, 4> bRiffFileSize_avi{};
    StoreLittle32(bRiffFileSize_avi, 0, bodySize);
    pass.repaired.Patch(riffBody + 12, bRiffFileSize_avi);
    pass.ullOffset += bodySize;
    pass.GrowRiff(std::uint64_t{bodySize} + 8);
    pass.RefillHere();
    return Next::GoOn;
}

}  // namespace

Next OnStrlList(Pass& pass) {
    pass.nStreams += 1;
    if (!TakeStreamType(pass)) {
        return Next::GiveUp;
    }
    pass.dwHandler = Field(pass, 24);
    MakeSureOfMainHeader(pass);
    pass.bStrlSeen = true;
    RepairStreamHeader(pass);
    // The one marker that is demanded and not mended.
    if (!pass.sBuffer.Matches(pass.B(76), kStrf)) {
        return Next::GiveUp;
    }
    if (pass.bThisVideo && !RepairPictureFormat(pass)) {
        return Next::GiveUp;
    }
    if (pass.bThisAudio) {
        RepairSoundFormat(pass);
    }
    const auto end = WalkStreamList(pass);
    return end ? TakeBlock(pass, *end) : Next::StandStill;
}

}  // namespace clipfix
