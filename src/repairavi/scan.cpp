#include "repairavi/scan.h"

#include <algorithm>

#include "repairavi/file_heads.h"
#include "repairavi/movie_list.h"
#include "repairavi/other_lists.h"
#include "repairavi/tag_route.h"

namespace clipfix {

namespace {

// The only refill that comes by itself stands at offsets 1, 333334, 666667 and so on, whatever
// ullBufferBase is. It is a test for equality, and an advance of more than one byte may jump over
// it: the buffer is then seen round again from its start, with its old contents, until the next
// refill point or the next step that reads for itself. That is meant. At offset 0 the subtraction
// wraps, and the remainder is 72087, so nothing is read.
constexpr std::uint64_t kRefillEvery = ScanBuffer::kSize;

bool IsRefillPoint(std::uint64_t offset) {
    return (offset - 1) % kRefillEvery == 0;
}

std::uint64_t NextRefillPoint(std::uint64_t offset) {
    return offset == 0 ? 1 : ((offset - 1) / kRefillEvery + 1) * kRefillEvery + 1;
}

bool KeepGoing(Pass& pass) {
    return pass.job.control.KeepGoing(JobControl::Work::AviEngine);
}

// The markers at which the pass, as it stands, does more than step on by one byte.
MarkerStops StopsOf(const Pass& pass) {
    MarkerStops stops = MarkerStops::All();
    stops.Pass(Marker::Vids);
    stops.Pass(Marker::Auds);
    if (pass.bRiffSeen) {
        stops.Pass(Marker::Riff);
    }
    if (pass.bAviSeen) {
        stops.Pass(Marker::Avi);
    }
    if (pass.bInMovi) {
        stops.Pass(Marker::Movi);
    }
    if (MayPassTagWithoutDigits(pass)) {
        stops.PassTagsWithoutDigits();
    }
    return stops;
}

// Crosses bytes of which the present one has no marker. As far as the buffer's view of the file
// does not change and no percent is due, all of them up to the next marker that matters are one
// step. At a marker that is only stepped over no percent step is made, so none is made here when
// one stands at the last byte.
void CrossUnknownBytes(Pass& pass) {
    const std::uint64_t inView = std::min<std::uint64_t>(
        pass.BufferRest(),
        std::min(pass.fileSize, NextRefillPoint(pass.ullOffset)) - pass.ullOffset);
    const std::uint64_t wanted =
        std::min(inView, pass.percent.NextChange(pass.ullOffset) - pass.ullOffset);
    const std::uint32_t until = pass.nBufferPos + static_cast<std::uint32_t>(wanted);
    const std::uint32_t found = pass.sBuffer.FindMarker(pass.nBufferPos + 1, until, StopsOf(pass));
    pass.ullOffset += found - pass.nBufferPos;
    if (pass.sBuffer.MarkerAt(found - std::int64_t{1}) == Marker::None) {
        pass.percent.Step(pass.ullOffset);
    }
}

Next ActOn(Pass& pass, Marker marker) {
    constexpr std::uint64_t kIndexHeadAndOne = 16;  // the entries behind it are refused as chunks
    switch (marker) {
        case Marker::Riff:
            return OnRiff(pass);
        case Marker::Avi:
            return OnAvi(pass);
        case Marker::List:
            return OnList(pass);
        case Marker::Junk:
            return OnJunk(pass);
        case Marker::Movi:
            return OnMoviWord(pass);
        case Marker::Idx1:
            return pass.Advance(kIndexHeadAndOne);
        case Marker::Tag:
            return OnTag(pass);
        case Marker::Vids:
        case Marker::Auds:
        case Marker::None:
            break;
    }
    return pass.Advance(1);
}

}  // namespace

ScanEnd ScanDamagedFile(Pass& pass) {
    while (pass.ullOffset < pass.fileSize) {
        if (!KeepGoing(pass)) {
            return ScanEnd::Cancelled;
        }
        if (IsRefillPoint(pass.ullOffset)) {
            pass.RefillHere();
        }
        pass.nBufferPos =
            static_cast<std::uint32_t>((pass.ullOffset - pass.ullBufferBase) % ScanBuffer::kSize);
        const Marker marker = pass.sBuffer.MarkerAt(pass.B(0));
        if (marker == Marker::None) {
            if (!KeepGoing(pass)) {
                pass.job.state.g_nAviPercent = 0;
                return ScanEnd::Cancelled;
            }
            CrossUnknownBytes(pass);
            continue;
        }
        switch (ActOn(pass, marker)) {
            case Next::GoOn:
                break;
            case Next::GiveUp:
                return ScanEnd::GaveUp;
            case Next::StandStill:
                return ScanEnd::StoodStill;
        }
    }
    return ScanEnd::Finished;
}

}  // namespace clipfix
