#include "repairavi/other_lists.h"

#include "repairavi/file_heads.h"
#include "repairavi/movie_list.h"
#include "repairavi/stream_list.h"

namespace clipfix {

namespace {

// A `LIST INFO` is taken over when `JUNK` or a list stands behind it, and only the first is tried:
// one that is not believed spoils it for those that follow, and that is meant.
Next OnInfoList(Pass& pass) {
    if (pass.bInfoSeen || pass.bInMovi) {
        return pass.Advance(1);
    }
    MakeSureOfMainHeader(pass);
    pass.bInfoSeen = true;
    const std::uint64_t size = pass.dwChunkSize;
    if (pass.ullOffset + size + 8 > pass.fileSize) {
        return pass.Advance(1);
    }
    const auto behind = pass.sBuffer.Bytes<4>(pass.B(static_cast<std::int64_t>(size) + 8));
    if (behind != JUNK_AVI && behind != LIST_AVI) {
        return pass.Advance(1);
    }
    pass.sBuffer.AppendTo(pass.repaired, pass.B(0), size + 8);
    pass.GrowRiff(size + 8);
    // Eight bytes less than the list: its last eight are looked at again.
    pass.ullOffset += size;
    pass.RefillHere();
    return Next::GoOn;
}

}  // namespace

Next OnList(Pass& pass) {
    MakeSureOfRiffHead(pass);
    MakeSureOfAviWord(pass);
    pass.dwChunkSize = pass.sBuffer.Little32(pass.B(4));
    const auto type = pass.sBuffer.Bytes<4>(pass.B(8));
    if (type == FourLetters{'h', 'd', 'r', 'l'}) {
        return OnHdrlList(pass);
    }
    if (type == FourLetters{'s', 't', 'r', 'l'}) {
        return OnStrlList(pass);
    }
    if (type == FourLetters{'I', 'N', 'F', 'O'}) {
        return OnInfoList(pass);
    }
    if (type == movi_AVI) {
        return OnMoviList(pass);
    }
    return pass.Advance(1);
}

Next OnJunk(Pass& pass) {
    const std::uint64_t size = pass.sBuffer.Little32(pass.B(4));
    if (pass.ullOffset + size >= pass.fileSize) {
        return pass.Advance(1);
    }
    // No rounding of an odd size and no refill, also when a refill point is jumped over: the
    // buffer is then seen round again with its old contents. Both are meant.
    return pass.Advance(size + 8);
}

}  // namespace clipfix
