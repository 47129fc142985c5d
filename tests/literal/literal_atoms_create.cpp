#include <cmath>

#include "literal/literal_atoms.h"

namespace clipfix::test {

namespace literal_building {

bool SameKind(std::string_view left, std::string_view right) {
    if (left.size() != right.size()) {
        return false;
    }
    for (std::size_t i = 0; i < left.size(); ++i) {
        const auto lower = [](char c) { return c >= 'A' && c <= 'Z' ? c - 'A' + 'a' : c + 0; };
        if (lower(left[i]) != lower(right[i])) {
            return false;
        }
    }
    return true;
}

void Put(ByteVector& image, std::uint64_t number, int bytes) {
    for (int shift = 8 * (bytes - 1); shift >= 0; shift -= 8) {
        image.push_back(static_cast<std::uint8_t>(shift < 64 ? (number >> shift) & 255U : 0U));
    }
}
void PutCode(ByteVector& image, std::string_view code) {
    for (const char letter : code) {
        image.push_back(static_cast<std::uint8_t>(letter));
    }
}
void PutAll(ByteVector& image, const ByteVector& more) {
    image.insert(image.end(), more.begin(), more.end());
}
std::uint32_t Code(std::string_view letters) {
    std::uint32_t code = 0;
    for (const char letter : letters) {
        code = code * 256 + static_cast<std::uint8_t>(letter);
    }
    return code;
}

// Toward zero, the low 32 bits of the 64-bit number; what is outside the 64-bit range is 0.
std::uint32_t Cut(double quotient) {
    if (std::isnan(quotient) || quotient >= 9223372036854775808.0 ||
        quotient <= -9223372036854775808.0) {
        return 0;
    }
    const auto whole = static_cast<std::int64_t>(std::trunc(quotient));
    return static_cast<std::uint32_t>(static_cast<std::uint64_t>(whole) & 0xFFFFFFFFU);
}

double RateOf(std::uint32_t timescale, std::uint32_t duration, std::uint32_t count) {
    return static_cast<double>(timescale) / static_cast<double>(duration) *
           static_cast<double>(count);
}

const LiteralStbl* StblOf(const LiteralTrak& trak) {
    return trak.mdia == nullptr || trak.mdia->minf == nullptr ? nullptr
                                                              : trak.mdia->minf->stbl.get();
}
std::uint32_t CountOf(const LiteralTrak& trak) {
    const LiteralStbl* stbl = StblOf(trak);
    return stbl == nullptr || stbl->stsz == nullptr ? 0 : stbl->stsz->numberOfEntries;
}

LiteralTable FillStts(std::uint32_t count, std::uint32_t duration) {
    LiteralTable stts;
    stts.type = Code("stts");
    stts.numberOfEntries = 1;
    stts.entries = {{count, duration}};
    stts.size = 1 * 8 + 16;
    stts.data = LiteralSerializeTable(stts, "stts");
    return stts;
}

LiteralTable FillStsc(const std::vector<std::vector<std::uint64_t>>& runs) {
    LiteralTable stsc;
    stsc.type = Code("stsc");
    stsc.entries = runs;
    stsc.numberOfEntries = static_cast<std::uint32_t>(runs.size());
    stsc.size = 12 * stsc.numberOfEntries + 16;
    stsc.data = LiteralSerializeTable(stsc, "stsc");
    return stsc;
}

LiteralTable FillStsz(const std::vector<std::uint32_t>& sizes) {
    LiteralTable stsz;
    stsz.type = Code("stsz");
    for (const std::uint32_t size : sizes) {
        stsz.entries.push_back({size});
    }
    stsz.numberOfEntries = static_cast<std::uint32_t>(sizes.size());
    stsz.size = stsz.numberOfEntries * 4 + 20;
    stsz.data = LiteralSerializeTable(stsz, "stsz");
    return stsz;
}

LiteralTable FillUniform(std::uint32_t count, std::uint32_t sampleSize) {
    LiteralTable stsz;
    stsz.type = Code("stsz");
    stsz.numberOfEntries = count;
    stsz.sampleSize = sampleSize;
    stsz.size = 20;
    stsz.data = LiteralSerializeTable(stsz, "stsz");
    return stsz;
}

LiteralTable FillCo64(const std::vector<std::uint64_t>& offsets) {
    LiteralTable co64;
    co64.type = Code("co64");
    for (const std::uint64_t offset : offsets) {
        co64.entries.push_back({offset});
    }
    co64.numberOfEntries = static_cast<std::uint32_t>(offsets.size());
    co64.size = co64.numberOfEntries * 8 + 16;
    co64.data = LiteralSerializeTable(co64, "co64");
    return co64;
}

LiteralTable FillStss(std::uint32_t sampleCount, std::uint32_t sampleSync) {
    std::uint32_t n = 0;
    if (sampleSync == 0) {
        n = 0;  // nothing can be divided by it
    } else if (sampleCount > sampleSync) {
        n = sampleCount / sampleSync - 1;
    } else if (sampleSync == 1) {
        n = 1;
    } else {
        n = sampleCount / 2;
    }
    if (n > kMostSyncSamples) {
        throw LiteralTableTooLong();
    }
    LiteralTable stss;
    stss.type = Code("stss");
    stss.numberOfEntries = n;
    std::uint32_t last = 1;
    for (std::uint32_t i = 0; i < n; ++i) {
        stss.entries.push_back({last});
        last = last + sampleSync - 1;
    }
    stss.size = n * 4 + 16;
    stss.data = LiteralSerializeTable(stss, "stss");
    return stss;
}

// The tables of the repaired track.
LiteralStbl CreateStbl(const LiteralStbl& reference, const LiteralRequest& request) {
    LiteralStbl made;
    made.type = reference.type;
    made.stsd = reference.stsd;
    made.stco = std::make_shared<LiteralTable>(FillCo64(request.stcoEntries));
    std::uint32_t optional = 0;
    made.stsc = std::make_shared<LiteralTable>();
    made.ctts = std::make_shared<LiteralTable>();
    made.stss = std::make_shared<LiteralTable>();
    made.stsz = std::make_shared<LiteralTable>();
    made.stts = std::make_shared<LiteralTable>();
    const std::string coder = reference.stsd == nullptr ? "" : reference.stsd->coderFormat;
    const std::uint32_t chunks = made.stco->numberOfEntries;
    if (SameKind(coder, "TWOS_AUDIO_CODER_FORMAT")) {
        if (reference.stsc != nullptr) {
            made.stsc = reference.stsc;
            made.stsc->data = LiteralSerializeTable(*made.stsc, "stsc");
        }
        if (!made.stsc->entries.empty()) {
            const auto each = static_cast<std::uint32_t>(made.stsc->entries.front()[1]);
            made.stsz = std::make_shared<LiteralTable>(FillUniform(chunks * each, 1));
        }
    } else if (SameKind(coder, "SOWT_AUDIO_CODER_FORMAT")) {
        made.stsc = std::make_shared<LiteralTable>(FillStsc(request.stscEntries));
        if (!request.stscEntries.empty()) {
            const auto each = static_cast<std::uint32_t>(request.stscEntries.front()[1]);
            made.stsz = std::make_shared<LiteralTable>(FillUniform(chunks * each, 1));
        }
    } else {
        made.stsc = std::make_shared<LiteralTable>(FillStsc(request.stscEntries));
        made.stsz = std::make_shared<LiteralTable>(FillStsz(request.stszEntries));
    }
    const bool video = SameKind(request.requestType, "VIDEO_REQUEST");
    if (video && reference.ctts != nullptr && reference.ctts->entries.size() > 1) {
        made.ctts = reference.ctts;
        optional += made.ctts->size;
    }
    if (video && reference.stss != nullptr) {
        const std::uint32_t sync = reference.stss->entries.size() > 1
                                       ? static_cast<std::uint32_t>(reference.stss->entries[1][0])
                                       : 2;
        made.stss = std::make_shared<LiteralTable>(FillStss(made.stsz->numberOfEntries, sync));
        optional += made.stss->size;
    }
    std::uint32_t delta = Cut(static_cast<double>(request.timescale) / request.sampleRate);
    if (delta == 0) {
        delta = video ? 1 : 0x400;
    }
    made.stts = std::make_shared<LiteralTable>(FillStts(made.stsz->numberOfEntries, delta));
    made.size = (made.stsd == nullptr ? 0 : made.stsd->size) + made.stco->size + made.stsz->size +
                made.stts->size + made.stsc->size + 8 + optional;
    Put(made.data, made.size, 4);
    Put(made.data, made.type, 4);
    if (made.stsd != nullptr) {
        PutAll(made.data, made.stsd->data);
    }
    for (const auto& table : {made.stss, made.ctts, made.stts, made.stsc, made.stsz, made.stco}) {
        PutAll(made.data, table->data);
    }
    return made;
}

ByteVector Hdlr34(std::uint32_t componentType, std::string_view subtype) {
    ByteVector image;
    Put(image, 34, 4);
    PutCode(image, "hdlr");
    Put(image, 0, 4);
    Put(image, componentType, 4);
    PutCode(image, subtype);
    Put(image, 0, 12);
    Put(image, 0, 1);
    Put(image, 0, 1);
    return image;
}

ByteVector MediaHeader(bool video) {
    ByteVector image;
    Put(image, video ? 20 : 16, 4);
    PutCode(image, video ? "vmhd" : "smhd");
    Put(image, video ? 1 : 0, 4);
    Put(image, 0, video ? 8 : 4);
    return image;
}

ByteVector Dinf36() {
    ByteVector image;
    Put(image, 36, 4);
    PutCode(image, "dinf");
    Put(image, 28, 4);
    PutCode(image, "dref");
    Put(image, 0, 4);
    Put(image, 1, 4);
    Put(image, 12, 4);
    PutCode(image, "alis");
    Put(image, 1, 4);
    return image;
}

ByteVector Edts36(std::uint32_t duration, std::uint32_t mediaTime) {
    ByteVector image;
    Put(image, 36, 4);
    PutCode(image, "edts");
    Put(image, 28, 4);
    PutCode(image, "elst");
    Put(image, 0, 4);
    Put(image, 1, 4);
    Put(image, duration, 4);
    Put(image, mediaTime, 4);
    Put(image, 1U << 16U, 4);
    return image;
}

std::shared_ptr<LiteralMinf> CreateMinf(const LiteralMinf& reference, bool video,
                                        const LiteralRequest& request) {
    auto made = std::make_shared<LiteralMinf>();
    made->type = reference.type;
    made->stbl = std::make_shared<LiteralStbl>(CreateStbl(*reference.stbl, request));
    made->mediaType = video ? "VIDEO_MEDIA" : "AUDIO_MEDIA";
    made->hdlr = std::make_shared<std::uint32_t>(Code("dhlr"));
    made->hasDinf = true;
    made->size = made->stbl->size + (video ? 20 : 16) + 34 + 8 + 36;
    Put(made->data, made->size, 4);
    Put(made->data, made->type, 4);
    PutAll(made->data, MediaHeader(video));
    PutAll(made->data, Hdlr34(0, "dhlr"));
    PutAll(made->data, Dinf36());
    PutAll(made->data, made->stbl->data);
    return made;
}

std::shared_ptr<LiteralMdia> CreateMdia(const LiteralMdia& reference, bool video,
                                        const LiteralRequest& request) {
    auto made = std::make_shared<LiteralMdia>();
    made->type = reference.type;
    made->minf = CreateMinf(*reference.minf, video, request);
    made->hdlr = std::make_shared<std::uint32_t>(Code(video ? "vide" : "soun"));
    const std::uint32_t product =
        made->minf->stbl->stsz->numberOfEntries * reference.mdhd->timescale;
    made->mdhd = std::make_shared<LiteralMdhd>();
    made->mdhd->size = 32;
    made->mdhd->duration = Cut(static_cast<double>(product) / reference.sampleRate);
    made->mdhd->timescale = reference.mdhd->timescale;
    made->mdhd->language = reference.mdhd->language;
    made->mdhd->quality = reference.mdhd->quality;
    made->size = made->minf->size + 34 + 32 + 8;
    made->mediaType = video ? "VIDEO_MEDIA" : "AUDIO_MEDIA";
    Put(made->data, made->size, 4);
    Put(made->data, made->type, 4);
    Put(made->data, 32, 4);
    PutCode(made->data, "mdhd");
    Put(made->data, 0, 12);
    Put(made->data, made->mdhd->timescale, 4);
    Put(made->data, made->mdhd->duration, 4);
    Put(made->data, made->mdhd->language, 2);
    Put(made->data, made->mdhd->quality, 2);
    PutAll(made->data, Hdlr34(Code("mhlr"), video ? "vide" : "soun"));
    PutAll(made->data, made->minf->data);
    return made;
}

std::shared_ptr<LiteralTrak> CreateTrak(const LiteralTrak& reference,
                                        const LiteralRequest& request) {
    auto made = std::make_shared<LiteralTrak>();
    made->trackType = reference.trackType;
    made->type = reference.type;
    made->tkhd = reference.tkhd;
    made->mdia = CreateMdia(*reference.mdia, SameKind(reference.trackType, "VIDEO_TRACK"), request);
    made->size = made->mdia->size + 8 + made->tkhd->size;
    LiteralUpdate(*made);
    return made;
}

void SetDuration(LiteralTrak& trak, std::uint32_t duration) {
    trak.tkhd->duration = duration;
    ByteVector edts;
    if (SameKind(trak.trackType, "VIDEO_TRACK")) {
        edts = Edts36(duration, trak.sampleDuration);
        trak.hasEdts = true;
        trak.size += 36;
    }
    Put(trak.data, trak.size, 4);
    Put(trak.data, trak.type, 4);
    PutAll(trak.data, trak.tkhd->Serialize(28));
    PutAll(trak.data, edts);
    PutAll(trak.data, trak.mdia->data);
    LiteralUpdate(trak);
}

}  // namespace literal_building

ByteVector LiteralHeader::Serialize(std::size_t durationAt) const {
    ByteVector image;
    literal_building::Put(image, size, 4);
    for (std::size_t i = 4; i < durationAt; ++i) {
        image.push_back(fixed[i]);
    }
    literal_building::Put(image, duration, 4);
    for (std::size_t i = durationAt + 4; i < fixed.size(); ++i) {
        image.push_back(fixed[i]);
    }
    return image;
}

ByteVector LiteralSerializeTable(const LiteralTable& table, std::string_view code) {
    using namespace literal_building;
    ByteVector image;
    Put(image, table.size, 4);
    Put(image, table.type, 4);
    Put(image, table.versionFlag, 4);
    if (code == "stsz") {
        Put(image, table.sampleSize, 4);
    }
    Put(image, table.numberOfEntries, 4);
    if (code == "stsz" && table.sampleSize != 0) {
        return image;
    }
    for (const auto& entry : table.entries) {
        for (const std::uint64_t number : entry) {
            Put(image, number, code == "co64" ? 8 : 4);
        }
    }
    return image;
}

void LiteralClassify(LiteralTrak& trak) {
    using namespace literal_building;
    const LiteralMdia& mdia = *trak.mdia;
    std::string media = "UNKNOWN_MEDIA";
    if (mdia.hdlr != nullptr) {
        if (*mdia.hdlr == Code("vide")) {
            media = "VIDEO_MEDIA";
        } else if (*mdia.hdlr == Code("soun")) {
            media = "AUDIO_MEDIA";
        }
    } else if (mdia.minf != nullptr) {
        media = mdia.minf->mediaType;
    }
    const bool video = SameKind(media, "VIDEO_MEDIA");
    if (!video && !SameKind(media, "AUDIO_MEDIA")) {
        trak.trackType = "UNKNOWN_TRACK";
        return;
    }
    trak.trackType = video ? "VIDEO_TRACK" : "AUDIO_TRACK";
    trak.timescale = mdia.mdhd->timescale;
    trak.mediaDuration = mdia.mdhd->duration;
    trak.sampleCount = CountOf(trak);
    trak.sampleRate = RateOf(trak.timescale, trak.mediaDuration, trak.sampleCount);
    if (video) {
        trak.sampleDuration = trak.timescale;
    }
}

void LiteralUpdate(LiteralTrak& trak) {
    using namespace literal_building;
    LiteralClassify(trak);
    trak.trackDuration = trak.tkhd->duration;
    trak.timescale = trak.mdia->mdhd->timescale;
    trak.mediaDuration = trak.mdia->mdhd->duration;
    trak.sampleCount = CountOf(trak);
    const LiteralStbl* stbl = StblOf(trak);
    trak.sampleDuration = 0;
    if (stbl->stts != nullptr && !stbl->stts->entries.empty()) {
        trak.sampleDuration = static_cast<std::uint32_t>(stbl->stts->entries.front()[1]);
    }
    trak.sampleRate = RateOf(trak.timescale, trak.mediaDuration, trak.sampleCount);
    trak.coderFormat = stbl->stsd == nullptr ? "" : stbl->stsd->coderFormat;
    if (SameKind(trak.coderFormat, "SOWT_AUDIO_CODER_FORMAT")) {
        trak.sampleRate = std::trunc(trak.sampleRate);
    }
}

std::optional<LiteralMoov> LiteralCreateMoov(LiteralMoov& reference, const LiteralRequest& video,
                                             const LiteralRequest& audio) {
    using namespace literal_building;
    if (reference.tracks.empty()) {
        return std::nullopt;
    }
    const auto rate = [&reference](std::string_view kind) {
        const LiteralTrak* trak = reference.FirstOf(kind);
        return trak == nullptr ? 0.0 : trak->sampleRate;
    };
    const std::uint32_t movieTimescale = reference.mvhd == nullptr ? 0 : reference.mvhd->timescale;
    LiteralMoov made;
    made.type = reference.type;
    made.mvhd = reference.mvhd;
    made.size = (made.mvhd == nullptr ? 0 : made.mvhd->size) + 8;
    for (const auto& trak : reference.tracks) {
        if (SameKind(trak->trackType, "VIDEO_TRACK")) {
            auto track = CreateTrak(*trak, video);
            const std::uint32_t duration =
                Cut(static_cast<double>(track->sampleCount) / rate("VIDEO_TRACK") *
                    static_cast<double>(movieTimescale));
            if (made.mvhd != nullptr) {
                made.mvhd->duration = duration;
            }
            SetDuration(*track, duration);
            made.tracks.push_back(track);
            made.size += track->size;
        } else if (SameKind(trak->trackType, "AUDIO_TRACK")) {
            auto track = CreateTrak(*trak, audio);
            const std::uint32_t duration =
                Cut(static_cast<double>(track->sampleCount) / rate("AUDIO_TRACK") *
                    static_cast<double>(movieTimescale));
            SetDuration(*track, duration);
            made.tracks.push_back(track);
            made.size += track->size;
        }
    }
    return made;
}

ByteVector LiteralWriteMoov(const LiteralMoov& moov) {
    using namespace literal_building;
    ByteVector file;
    Put(file, moov.size, 4);
    Put(file, moov.type, 4);
    if (moov.mvhd != nullptr) {
        PutAll(file, moov.mvhd->Serialize(24));
    }
    for (const auto& trak : moov.tracks) {
        PutAll(file, trak->data);
    }
    return file;
}

}  // namespace clipfix::test
