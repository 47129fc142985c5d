#include "literal/literal_atoms.h"

#include <cmath>

namespace clipfix::test {

std::uint32_t LiteralAtomBlock::U8(std::uint64_t at) const {
    return at < bytes.size() ? bytes[at] : 0;
}
std::uint32_t LiteralAtomBlock::U16(std::uint64_t at) const {
    return U8(at) * 256 + U8(at + 1);
}
std::uint32_t LiteralAtomBlock::U32(std::uint64_t at) const {
    return U16(at) * 65536 + U16(at + 2);
}
bool LiteralAtomBlock::Spells(std::uint64_t at, std::string_view letters) const {
    for (std::size_t i = 0; i < letters.size(); ++i) {
        if (at + i >= bytes.size() || bytes[at + i] != static_cast<std::uint8_t>(letters[i])) {
            return false;
        }
    }
    return true;
}
LiteralAtomBlock LiteralAtomBlock::Copy(std::uint64_t at, std::uint32_t count) const {
    LiteralAtomBlock copy;
    copy.length = count;
    for (std::uint64_t i = at; i < at + count && i < bytes.size(); ++i) {
        copy.bytes.push_back(bytes[i]);
    }
    return copy;
}
bool LiteralAtomBlock::Holds(std::uint64_t at, std::uint64_t count) const {
    return at + count <= length;
}

namespace literal_atoms {

bool SameLetters(std::string_view left, std::string_view right) {
    if (left.size() != right.size()) {
        return false;
    }
    for (std::size_t i = 0; i < left.size(); ++i) {
        const auto upper = [](char c) { return c >= 'a' && c <= 'z' ? c - 'a' + 'A' : c + 0; };
        if (upper(left[i]) != upper(right[i])) {
            return false;
        }
    }
    return true;
}

// A known child of size 0, which a scan would never get past, counts as one that does not fit.
bool ChildFits(const LiteralAtomBlock& block, std::uint64_t at) {
    const std::uint32_t childSize = block.U32(at);
    return childSize != 0 && block.Holds(at, childSize);
}

LiteralHeader ReadHeader(const LiteralAtomBlock& block, std::size_t imageLength,
                         std::size_t durationAt) {
    LiteralHeader header;
    header.size = block.length;
    header.duration = block.U32(durationAt);
    for (std::size_t i = 0; i < imageLength; ++i) {
        header.fixed.push_back(static_cast<std::uint8_t>(block.U8(i)));
    }
    return header;
}

// avcC, hvcC and colr behind the fixed fields of a video entry.
void ScanExtensions(const LiteralAtomBlock& block, LiteralVideoEntry& entry) {
    std::uint64_t i = 86;
    while (i < block.length) {
        const std::uint32_t length = block.U32(i);
        if (i + 4 > block.length) {
            i += 1;
            continue;
        }
        if (block.Spells(i + 4, "colr") && length != 0) {
            i += length;
        } else if (block.Spells(i + 4, "avcC")) {
            if (length == 0 || !block.Holds(i, length)) {
                return;
            }
            LiteralAtomBlock copy = block.Copy(i, length);
            copy.bytes.resize(length);
            entry.avcC = std::make_shared<CAVCDecoderConfigurationRecord>(copy.bytes);
            entry.avcConfig = entry.avcC;
            entry.hvcC = nullptr;
            i += length;
        } else if (block.Spells(i + 4, "hvcC")) {
            if (length == 0 || !block.Holds(i, length)) {
                return;
            }
            LiteralAtomBlock copy = block.Copy(i, length);
            copy.bytes.resize(length);
            auto record = std::make_shared<HVCDecoderConfigurationRecord>();
            record->Parse(copy.bytes, static_cast<std::int32_t>(entry.wt),
                          static_cast<std::int32_t>(entry.ht));
            entry.hvcC = record;
            entry.avcC = nullptr;
            i += length;
        } else {
            i += 1;
        }
    }
}

std::shared_ptr<LiteralVideoEntry> ReadVideoEntry(const LiteralAtomBlock& block) {
    auto entry = std::make_shared<LiteralVideoEntry>();
    entry->dformat = block.U32(4);
    entry->wt = block.U16(32);
    entry->ht = block.U16(34);
    entry->dpth = block.U16(82);
    if (block.Spells(4, "avc1") || block.Spells(4, "hvc1")) {
        ScanExtensions(block, *entry);
    }
    return entry;
}

std::shared_ptr<LiteralAudioEntry> ReadAudioEntry(const LiteralAtomBlock& block) {
    auto entry = std::make_shared<LiteralAudioEntry>();
    entry->dformat = block.U32(4);
    entry->vrsn = block.U16(16);
    entry->nchanel = block.U16(24);
    entry->smplsize = block.U16(26);
    entry->srate = block.U32(32);
    if (block.Spells(4, "mp4a")) {
        std::uint64_t i = 36;
        while (i + 4 < block.length) {
            if (block.Spells(i + 4, "esds") && ChildFits(block, i)) {
                LiteralAtomBlock copy = block.Copy(i, block.U32(i));
                copy.bytes.resize(copy.length);
                entry->esds = std::make_shared<CEsdsDecoder>(copy.bytes);
                i += copy.length;
            } else {
                i += 1;
            }
        }
    } else if (entry->vrsn == 1 && block.length > 51) {
        entry->sppacket = block.U32(36);
        entry->bppacket = block.U32(40);
        entry->bpframe = block.U32(44);
        entry->bpsample = block.U32(48);
    }
    return entry;
}

void AddVideoEntry(const LiteralAtomBlock& copy, LiteralStsd& stsd, std::string_view key,
                   LiteralGlobals& globals) {
    stsd.entries.push_back({ReadVideoEntry(copy), nullptr});
    stsd.coderFormat = key;
    globals.videoCoder = key;
}

void AddAudioEntry(const LiteralAtomBlock& copy, LiteralStsd& stsd, std::string_view key,
                   LiteralGlobals& globals) {
    stsd.entries.push_back({nullptr, ReadAudioEntry(copy)});
    stsd.coderFormat = key;
    globals.audioCoder = key;
}

}  // namespace literal_atoms

LiteralHeader LiteralReadMvhd(const LiteralAtomBlock& block) {
    LiteralHeader header = literal_atoms::ReadHeader(block, 108, 24);
    header.timescale = block.U32(20);
    return header;
}
LiteralHeader LiteralReadTkhd(const LiteralAtomBlock& block) {
    return literal_atoms::ReadHeader(block, 92, 28);
}

std::shared_ptr<LiteralStsd> LiteralReadStsd(const LiteralAtomBlock& block,
                                             LiteralGlobals& globals) {
    using namespace literal_atoms;
    auto stsd = std::make_shared<LiteralStsd>();
    stsd->data = block.bytes;
    stsd->size = block.length;
    stsd->numberOfEntries = block.U32(12);
    std::uint64_t i = 16;
    for (std::uint32_t repeat = 0; repeat < stsd->numberOfEntries; ++repeat) {
        const std::uint64_t before = i;
        if (i + 4 <= block.length) {
            const std::uint32_t length = block.U32(i);
            if (i + length <= block.length) {
                if (block.Spells(i + 4, "avc1")) {
                    AddVideoEntry(block.Copy(i, length), *stsd, "AVC1_VIDEO_CODER_FORMAT", globals);
                    i += length;
                }
                if (block.Spells(i + 4, "hvc1")) {
                    AddVideoEntry(block.Copy(i, length), *stsd, "HVC1_VIDEO_CODER_FORMAT", globals);
                    i += length;
                } else if (block.Spells(i + 4, "mp4a")) {
                    AddAudioEntry(block.Copy(i, length), *stsd, "MP4A_AUDIO_CODER_FORMAT", globals);
                    i += length;
                } else if (block.Spells(i + 4, "sowt")) {
                    AddAudioEntry(block.Copy(i, length), *stsd, "SOWT_AUDIO_CODER_FORMAT", globals);
                    i += length;
                } else if (block.Spells(i + 4, "twos")) {
                    AddAudioEntry(block.Copy(i, length), *stsd, "TWOS_AUDIO_CODER_FORMAT", globals);
                    i += length;
                }
            }
        }
        if (i == before) {
            break;  // all repeats that remain do the same again
        }
    }
    return stsd;
}

const LiteralVideoEntry* LiteralStsd::KnownVideo() const {
    using literal_atoms::SameLetters;
    if (!SameLetters(coderFormat, "AVC1_VIDEO_CODER_FORMAT") &&
        !SameLetters(coderFormat, "HVC1_VIDEO_CODER_FORMAT")) {
        return nullptr;
    }
    return entries.empty() ? nullptr : entries.front().video.get();
}

std::uint32_t LiteralStsd::NalLengthSize() const {
    const LiteralVideoEntry* first = KnownVideo();
    if (first == nullptr) {
        return 0;
    }
    if (first->dformat == 0x68766331) {  // hvc1
        return 3 + 1;
    }
    return first->avcConfig == nullptr ? 0 : first->avcConfig->lengthSizeMinusOne + 1U;
}

const LiteralTrak* LiteralMoov::FirstOf(std::string_view kind) const {
    for (const auto& trak : tracks) {
        if (literal_atoms::SameLetters(trak->trackType, kind)) {
            return trak.get();
        }
    }
    return nullptr;
}

LiteralTable LiteralReadTable(const LiteralAtomBlock& block, std::string_view code) {
    LiteralTable table;
    table.size = block.length;
    table.type = block.U32(4);
    table.versionFlag = block.U32(8);
    table.numberOfEntries = block.U32(12);
    std::uint64_t i = 16;
    if (code == "stsz") {
        table.sampleSize = block.U32(12);
        table.numberOfEntries = block.U32(16);
        i = 20;
    }
    const std::uint32_t width = code == "stsc"                                       ? 12
                                : code == "stts" || code == "ctts" || code == "co64" ? 8
                                                                                     : 4;
    for (std::uint32_t n = 0; n < table.numberOfEntries; ++n) {
        if (!block.Holds(i, width)) {
            break;  // no later one fits either
        }
        std::vector<std::uint64_t> numbers;
        if (code == "co64") {
            numbers.push_back(block.U32(i));  // the high half, for a low one
        } else {
            for (std::uint32_t k = 0; k < width; k += 4) {
                numbers.push_back(block.U32(i + k));
            }
        }
        table.entries.push_back(numbers);
        i += width;
    }
    if (code == "ctts") {
        table.data = LiteralSerializeTable(table, code);
    }
    return table;
}

namespace literal_atoms {

void ReadStbl(const LiteralAtomBlock& block, LiteralStbl& stbl, LiteralGlobals& globals) {
    stbl.size = block.length;
    stbl.type = block.U32(4);
    const auto table = [](const LiteralAtomBlock& copy, std::string_view code) {
        return std::make_shared<LiteralTable>(LiteralReadTable(copy, code));
    };
    std::uint64_t i = 8;
    while (i < block.length) {
        const std::uint32_t childSize = block.U32(i);
        const bool fits = ChildFits(block, i);
        bool counted = false;
        for (const char* code :
             {"stsd", "stts", "stss", "stsc", "stsz", "stco", "co64", "ctts", "sdtp"}) {
            counted = counted || block.Spells(i + 4, code);
        }
        if (counted) {
            globals.stblChildBytes += childSize;
        }
        bool uncounted = false;
        for (const char* code : {"cslg", "sdps", "sgpd", "sbgp", "csgm", "free"}) {
            uncounted = uncounted || block.Spells(i + 4, code);
        }
        if (!(counted || uncounted) || !fits) {
            i += 1;
            continue;
        }
        const LiteralAtomBlock copy = block.Copy(i, childSize);
        if (copy.Spells(4, "sdtp")) {
            // Copied and dropped.
        } else if (uncounted) {
            globals.stblChildBytes += childSize;
        } else if (block.Spells(i + 4, "stsd")) {
            stbl.stsd = LiteralReadStsd(copy, globals);
        } else if (block.Spells(i + 4, "stts")) {
            stbl.stts = table(copy, "stts");
        } else if (block.Spells(i + 4, "stss")) {
            stbl.stss = table(copy, "stss");
        } else if (block.Spells(i + 4, "stsc")) {
            stbl.stsc = table(copy, "stsc");
        } else if (block.Spells(i + 4, "stsz")) {
            stbl.stsz = table(copy, "stsz");
        } else if (block.Spells(i + 4, "stco")) {
            stbl.stco = table(copy, "stco");
        } else if (block.Spells(i + 4, "co64")) {
            stbl.stco = table(copy, "co64");
        } else if (block.Spells(i + 4, "ctts")) {
            stbl.ctts = table(copy, "ctts");
        }
        i += childSize;
    }
}

std::uint64_t ReadMediaHeader(const LiteralAtomBlock& block, LiteralMinf& minf) {
    for (const auto& [code, media] :
         {std::pair{"vmhd", "VIDEO_MEDIA"}, {"smhd", "AUDIO_MEDIA"}, {"gmhd", "UNKNOWN_MEDIA"}}) {
        if (block.Spells(12, code) && block.Holds(block.U32(8), 8)) {
            minf.mediaType = media;
            return 8 + std::uint64_t{block.U32(8)};
        }
    }
    return 8;
}

void ReadMinf(const LiteralAtomBlock& block, LiteralMinf& minf, LiteralGlobals& globals) {
    minf.size = block.length;
    minf.type = block.U32(4);
    std::uint64_t i = ReadMediaHeader(block, minf);
    while (i + 4 < block.length) {
        if (!ChildFits(block, i)) {
            i += 1;
            continue;
        }
        const std::uint32_t childSize = block.U32(i);
        const LiteralAtomBlock copy = block.Copy(i, childSize);
        if (block.Spells(i + 4, "gmin")) {
            minf.hasGmin = true;
        } else if (block.Spells(i + 4, "hdlr")) {
            minf.hdlr = std::make_shared<std::uint32_t>(copy.U32(16));
        } else if (block.Spells(i + 4, "dinf")) {
            minf.hasDinf = true;
        } else if (block.Spells(i + 4, "stbl")) {
            minf.stbl = std::make_shared<LiteralStbl>();
            ReadStbl(copy, *minf.stbl, globals);
            if (static_cast<std::uint32_t>(globals.stblChildBytes + 8) != copy.length) {
                minf.stbl = nullptr;
            }
            globals.stblChildBytes = 0;
        } else {
            i += 1;
            continue;
        }
        i += childSize;
    }
}

void ReadMdia(const LiteralAtomBlock& block, LiteralMdia& mdia, LiteralGlobals& globals) {
    mdia.size = block.length;
    mdia.type = block.U32(4);
    const LiteralAtomBlock header = block.Copy(8, block.U32(8));
    mdia.mdhd = std::make_shared<LiteralMdhd>();
    mdia.mdhd->size = header.length;
    mdia.mdhd->timescale = header.U32(20);
    mdia.mdhd->duration = header.U32(24);
    mdia.mdhd->language = header.U16(28);
    mdia.mdhd->quality = header.U16(30);
    std::int64_t i = std::int64_t{header.length} + 8;
    while (i < std::int64_t{block.length} - 8) {
        const auto at = static_cast<std::uint64_t>(i);
        if (!ChildFits(block, at)) {
            i += 1;
            continue;
        }
        const LiteralAtomBlock copy = block.Copy(at, block.U32(at));
        if (block.Spells(at + 4, "hdlr")) {
            mdia.hdlr = std::make_shared<std::uint32_t>(copy.U32(16));
        } else if (block.Spells(at + 4, "minf")) {
            mdia.minf = std::make_shared<LiteralMinf>();
            ReadMinf(copy, *mdia.minf, globals);
            if (mdia.minf->stbl == nullptr) {
                mdia.minf = nullptr;
            }
        } else if (block.Spells(at + 4, "udta")) {
            mdia.hasUdta = true;
        } else {
            i += 1;
            continue;
        }
        i += copy.length;
    }
    mdia.mediaType = "UNKNOWN_MEDIA";
    if (mdia.hdlr != nullptr && *mdia.hdlr == 0x76696465) {  // vide
        mdia.mediaType = "VIDEO_MEDIA";
    } else if (mdia.hdlr != nullptr && *mdia.hdlr == 0x736F756E) {  // soun
        mdia.mediaType = "AUDIO_MEDIA";
    }
    if (mdia.minf != nullptr && mdia.minf->stbl != nullptr && mdia.minf->stbl->stsz != nullptr) {
        mdia.sampleRate = static_cast<double>(mdia.mdhd->timescale) /
                          static_cast<double>(mdia.mdhd->duration) *
                          static_cast<double>(mdia.minf->stbl->stsz->numberOfEntries);
    }
}

void ReadTrak(const LiteralAtomBlock& block, LiteralTrak& trak, LiteralGlobals& globals) {
    trak.size = block.length;
    trak.type = block.U32(4);
    const LiteralAtomBlock header = block.Copy(8, block.U32(8));
    trak.tkhd = std::make_shared<LiteralHeader>(LiteralReadTkhd(header));
    std::int64_t i = std::int64_t{header.length} + 8;
    while (i < std::int64_t{block.length} - 8) {
        const std::int64_t before = i;
        auto at = static_cast<std::uint64_t>(i);
        if (block.Spells(at + 4, "edts") && ChildFits(block, at)) {
            trak.hasEdts = true;
            i += block.U32(at);
        }
        at = static_cast<std::uint64_t>(i);
        if (block.Spells(at + 4, "mdia") && ChildFits(block, at)) {
            trak.mdia = std::make_shared<LiteralMdia>();
            ReadMdia(block.Copy(at, block.U32(at)), *trak.mdia, globals);
            if (trak.mdia->minf == nullptr) {
                trak.mdia = nullptr;
            }
            i += block.U32(at);
        }
        at = static_cast<std::uint64_t>(i);
        if (block.Spells(at + 4, "udta") && ChildFits(block, at)) {
            trak.hasUdta = true;
            i += block.U32(at);
        }
        if (i == before) {
            i += 1;
        }
    }
    if (trak.mdia != nullptr) {
        LiteralClassify(trak);
        LiteralUpdate(trak);
    }
}

}  // namespace literal_atoms

LiteralMoov LiteralReadMoov(const LiteralAtomBlock& block, LiteralGlobals& globals) {
    LiteralMoov moov;
    moov.size = block.length;
    moov.type = block.U32(4);
    globals.trackCount = 0;
    std::int64_t i = 8;
    while (i <= std::int64_t{block.length} - 8) {
        const auto at = static_cast<std::uint64_t>(i);
        const bool fits = literal_atoms::ChildFits(block, at);
        if (fits && block.Spells(at + 4, "mvhd")) {
            moov.mvhd =
                std::make_shared<LiteralHeader>(LiteralReadMvhd(block.Copy(at, block.U32(at))));
            i += block.U32(at);
        } else if (fits && block.Spells(at + 4, "trak")) {
            auto trak = std::make_shared<LiteralTrak>();
            literal_atoms::ReadTrak(block.Copy(at, block.U32(at)), *trak, globals);
            if (trak->mdia == nullptr) {
                return moov;
            }
            moov.tracks.push_back(trak);
            globals.trackCount += 1;
            i += block.U32(at);
        } else {
            i += 1;
        }
    }
    return moov;
}

}  // namespace clipfix::test
