#include "repairavi/avi_markers.h"

namespace clipfix {

Marker RecogniseMarker(ByteView bytes) noexcept {
    // Letters behind the view's end read as zero, and no marker has a zero in it.
    const std::uint32_t letters = ReadLittle32(bytes, 0);
    switch (letters) {
        case LetterNumber(RIFF_AVI):
            return Marker::Riff;
        case LetterNumber(AVI0_AVI):
            return Marker::Avi;
        case LetterNumber(LIST_AVI):
            return Marker::List;
        case LetterNumber(JUNK_AVI):
            return Marker::Junk;
        case LetterNumber(movi_AVI):
            return Marker::Movi;
        case LetterNumber(idx1_AVI):
            return Marker::Idx1;
        case LetterNumber(vids_AVI):
            return Marker::Vids;
        case LetterNumber(auds_AVI):
            return Marker::Auds;
        default:
            break;
    }
    switch (letters & 0xFFFFU) {
        case LetterNumber(dc_AVI):
        case LetterNumber(db_AVI):
        case LetterNumber(xx_AVI):
        case LetterNumber(wb_AVI):
            return Marker::Tag;
        default:
            return Marker::None;
    }
}

}  // namespace clipfix
