#include "literal/atom_facts.h"

#include <array>
#include <cmath>
#include <cstdio>
#include <memory>
#include <utility>
#include <vector>

namespace clipfix::test {
namespace {

class FactTaker {
  public:
    FactTaker(Facts& facts, std::string prefix) : facts_(facts), prefix_(std::move(prefix)) {}

    void operator()(const std::string& name, std::uint64_t number) {
        facts_[prefix_ + name] = std::to_string(number);
    }
    void operator()(const std::string& name, const std::string& text) {
        facts_[prefix_ + name] = "\"" + text + "\"";
    }
    void Rate(const std::string& name, double rate) {
        std::array<char, 40> text{};
        std::snprintf(text.data(), text.size(), "%a", std::isnan(rate) ? 0.0 : rate);
        facts_[prefix_ + name] = std::isnan(rate) ? "not a number" : text.data();
    }
    void Bytes(const std::string& name, ByteView bytes) {
        std::string text;
        for (const std::uint8_t byte : bytes) {
            text += std::to_string(byte) + " ";
        }
        facts_[prefix_ + name] = text;
    }
    [[nodiscard]] FactTaker Under(const std::string& name) const {
        return {facts_, prefix_ + name + "."};
    }

  private:
    Facts& facts_;
    std::string prefix_;
};

std::vector<std::uint64_t> NumbersOf(const CTimetoSampleEntry& entry) {
    return {entry.sampleCount, entry.sampleDuration};
}
std::vector<std::uint64_t> NumbersOf(const CSampleToChunkEntery& entry) {
    return {entry.firstChunk, entry.samplesPerChunk, entry.sampleDescID};
}
std::vector<std::uint64_t> NumbersOf(const CompositionOffsetEntery& entry) {
    return {entry.sample, entry.comp};
}
std::vector<std::uint64_t> NumbersOf(std::uint64_t number) {
    return {number};
}

void AddTable(FactTaker facts, const LiteralTable& table) {
    facts("size", table.size);
    facts("type", table.type);
    facts("version", table.versionFlag);
    facts("count", table.numberOfEntries);
    std::string text;
    for (const auto& entry : table.entries) {
        for (const auto number : entry) {
            text += std::to_string(number) + " ";
        }
        text += "/ ";
    }
    facts("entries", text);
}

// The same of a table of the program, by way of the model's structure.
template <typename Table, typename Entries>
LiteralTable AsLiteral(const Table& table, std::uint32_t count, const Entries& entries) {
    LiteralTable literal;
    literal.size = table.size;
    literal.type = table.type;
    literal.versionFlag = table.versionFlag;
    literal.numberOfEntries = count;
    for (const auto& entry : entries) {
        literal.entries.push_back(NumbersOf(entry));
    }
    return literal;
}
template <typename Table>
LiteralTable AsLiteral(const Table& table) {
    return AsLiteral(table, table.numberOfEntries, table.entries);
}
LiteralTable AsLiteral(const CStsc& table) {
    return AsLiteral(
        table, table.numberOfEntries,
        table.entries == nullptr ? std::vector<CSampleToChunkEntery>{} : *table.entries);
}
LiteralTable AsLiteral(const CCtts& table) {
    return AsLiteral(table, table.numOfEntry, table.entries);
}

void AddRecords(FactTaker facts, const CAVCDecoderConfigurationRecord* avcC,
                const HVCDecoderConfigurationRecord* hvcC) {
    facts("avcC", avcC != nullptr ? 1U : 0U);
    facts("hvcC", hvcC != nullptr ? 1U : 0U);
    if (avcC != nullptr) {
        facts("avcC size", avcC->size);
        facts("avcC length size", avcC->lengthSizeMinusOne);
        facts.Bytes("avcC sps", avcC->spsBytes);
        facts.Bytes("avcC pps", avcC->ppsBytes);
    }
    if (hvcC != nullptr) {
        facts("hvcC size", hvcC->size);
        facts("hvcC sets", (hvcC->vps != nullptr ? 4U : 0U) + (hvcC->sps != nullptr ? 2U : 0U) +
                               (hvcC->pps != nullptr ? 1U : 0U));
        facts("hvcC lengths", hvcC->vpsLength + hvcC->spsLength * 65536ULL);
    }
}

void AddVideo(FactTaker facts, const LiteralVideoEntry& entry) {
    facts("format", entry.dformat);
    facts("width", entry.wt);
    facts("height", entry.ht);
    facts("depth", entry.dpth);
    facts("avcConfig", entry.avcConfig != nullptr ? 1U : 0U);
    AddRecords(facts, entry.avcC.get(), entry.hvcC.get());
}
void AddVideo(FactTaker facts, const CVideoSampleDescriptionEntery& entry) {
    facts("format", entry.dformat);
    facts("width", entry.wt);
    facts("height", entry.ht);
    facts("depth", entry.dpth);
    facts("avcConfig", entry.avcConfig != nullptr ? 1U : 0U);
    const auto* avcC = std::get_if<1>(&entry.decoderConfig);
    const auto* hvcC = std::get_if<2>(&entry.decoderConfig);
    AddRecords(facts, avcC != nullptr ? avcC->get() : nullptr,
               hvcC != nullptr ? hvcC->get() : nullptr);
}

template <typename Entry>
void AddSound(FactTaker facts, const Entry& entry) {
    facts("format", entry.dformat);
    facts("version", entry.vrsn);
    facts("channels", entry.nchanel);
    facts("bits", entry.smplsize);
    facts("rate", entry.srate);
    facts("per packet", entry.sppacket);
    facts("bytes per packet", entry.bppacket);
    facts("bytes per frame", entry.bpframe);
    facts("bytes per sample", entry.bpsample);
    facts("esds", entry.esds != nullptr ? 1U : 0U);
    if (entry.esds != nullptr && entry.esds->DecoderSpecificBytes() != nullptr) {
        facts.Bytes("specific", *entry.esds->DecoderSpecificBytes());
    }
}

void AddStsd(FactTaker facts, const LiteralStsd& stsd) {
    facts("size", stsd.size);
    facts("count", stsd.numberOfEntries);
    facts("coder", stsd.coderFormat);
    facts.Bytes("data", stsd.data);
    facts("length size", stsd.NalLengthSize());
    if (!stsd.entries.empty()) {
        const LiteralEntry& first = stsd.entries.front();
        first.video != nullptr ? AddVideo(facts.Under("video"), *first.video)
                               : AddSound(facts.Under("sound"), *first.audio);
    }
}
void AddStsd(FactTaker facts, const CStsd& stsd) {
    facts("size", stsd.size);
    facts("count", stsd.numberOfEntries);
    facts("coder", stsd.coderFormat);
    facts.Bytes("data", stsd.data);
    facts("length size", stsd.GetNALLengthSize());
    const AnySampleEntry& first = stsd.GetFirstEntry();
    if (const auto* video = std::get_if<1>(&first)) {
        AddVideo(facts.Under("video"), **video);
    } else if (const auto* sound = std::get_if<2>(&first)) {
        AddSound(facts.Under("sound"), **sound);
    }
}

// A table that was made and never filled counts as none.
void AddStbl(FactTaker facts, const LiteralStbl& stbl) {
    facts("size", stbl.size);
    facts("type", stbl.type);
    if (stbl.stsd != nullptr) {
        AddStsd(facts.Under("stsd"), *stbl.stsd);
    }
    for (const auto& [name, table] : {std::pair{"stts", stbl.stts},
                                      {"stss", stbl.stss},
                                      {"stsc", stbl.stsc},
                                      {"stsz", stbl.stsz},
                                      {"stco", stbl.stco},
                                      {"ctts", stbl.ctts}}) {
        if (table != nullptr && table->size != 0) {
            AddTable(facts.Under(name), *table);
        }
    }
}
void AddStbl(FactTaker facts, const CStbl& stbl) {
    facts("size", stbl.size);
    facts("type", stbl.type);
    if (stbl.stsd != nullptr) {
        AddStsd(facts.Under("stsd"), *stbl.stsd);
    }
    const auto add = [&facts](const char* name, const auto& table) {
        if (table != nullptr && table->size != 0) {
            AddTable(facts.Under(name), AsLiteral(*table));
        }
    };
    add("stts", stbl.stts);
    add("stss", stbl.stss);
    add("stsc", stbl.stsc);
    add("stsz", stbl.stsz);
    add("stco", stbl.stco);
    add("ctts", stbl.ctts);
}

std::uint64_t SubtypeOf(const std::shared_ptr<std::uint32_t>& hdlr) {
    return hdlr == nullptr ? UINT64_MAX : *hdlr;
}
std::uint64_t SubtypeOf(const std::unique_ptr<CHdlr>& hdlr) {
    return hdlr == nullptr ? UINT64_MAX : hdlr->componentSubtype;
}
bool HasUdta(const LiteralMdia& mdia) {
    return mdia.hasUdta;
}
bool HasUdta(const CMdia& mdia) {
    return mdia.udta != nullptr;
}
bool HasDinf(const LiteralMinf& minf) {
    return minf.hasDinf;
}
bool HasDinf(const CMinf& minf) {
    return minf.dinf != nullptr;
}
bool HasGmin(const LiteralMinf& minf) {
    return minf.hasGmin;
}
bool HasGmin(const CMinf& minf) {
    return minf.gmin != nullptr;
}
const LiteralMdhd& MdhdOf(const LiteralMdia& mdia) {
    return *mdia.mdhd;
}
const CMdhd& MdhdOf(const CMdia& mdia) {
    return mdia.mdhd;
}

template <typename Mdia>
void AddMdia(FactTaker facts, const Mdia& mdia) {
    facts("size", mdia.size);
    facts("type", mdia.type);
    facts("media", mdia.mediaType);
    facts.Rate("rate", mdia.sampleRate);
    facts("hdlr", SubtypeOf(mdia.hdlr));
    facts("udta", HasUdta(mdia) ? 1U : 0U);
    const auto& mdhd = MdhdOf(mdia);
    facts("mdhd size", mdhd.size);
    facts("mdhd timescale", mdhd.timescale);
    facts("mdhd duration", mdhd.duration);
    facts("mdhd language", mdhd.language);
    facts("mdhd quality", mdhd.quality);
    const auto& minf = *mdia.minf;
    facts("minf size", minf.size);
    facts("minf type", minf.type);
    facts("minf media", minf.mediaType);
    facts("minf hdlr", SubtypeOf(minf.hdlr));
    facts("minf dinf", HasDinf(minf) ? 1U : 0U);
    facts("minf gmin", HasGmin(minf) ? 1U : 0U);
    AddStbl(facts.Under("stbl"), *minf.stbl);
}

template <typename Trak>
void AddTrak(FactTaker facts, const Trak& trak, bool hasEdts, bool hasUdta) {
    facts("size", trak.size);
    facts("type", trak.type);
    facts("timescale", trak.timescale);
    facts("media duration", trak.mediaDuration);
    facts("samples", trak.sampleCount);
    facts("sample duration", trak.sampleDuration);
    facts("track duration", trak.trackDuration);
    facts.Rate("rate", trak.sampleRate);
    facts("kind", trak.trackType);
    facts("coder", trak.coderFormat);
    facts("edts", hasEdts ? 1U : 0U);
    facts("udta", hasUdta ? 1U : 0U);
    facts("tkhd size", trak.tkhd->size);
    facts("tkhd duration", trak.tkhd->duration);
    AddMdia(facts.Under("mdia"), *trak.mdia);
}

template <typename Moov>
FactTaker AddMovieHead(Facts& facts, const Moov& moov) {
    FactTaker movie(facts, "moov.");
    movie("size", moov.size);
    movie("type", moov.type);
    movie("tracks", moov.tracks.size());
    if (moov.mvhd != nullptr) {
        movie("mvhd size", moov.mvhd->size);
        movie("mvhd timescale", moov.mvhd->timescale);
        movie("mvhd duration", moov.mvhd->duration);
    }
    return movie;
}

template <typename Table>
Facts TableFacts(const Table& table) {
    Facts facts;
    AddTable({facts, ""}, AsLiteral(table));
    return facts;
}

}  // namespace

Facts FactsOf(const LiteralTable& table) {
    Facts facts;
    AddTable({facts, ""}, table);
    return facts;
}
Facts FactsOf(const CStts& table) {
    return TableFacts(table);
}
Facts FactsOf(const CStsc& table) {
    return TableFacts(table);
}
Facts FactsOf(const CStsz& table) {
    return TableFacts(table);
}
Facts FactsOf(const CStco& table) {
    return TableFacts(table);
}
Facts FactsOf(const CStss& table) {
    return TableFacts(table);
}
Facts FactsOf(const CCtts& table) {
    return TableFacts(table);
}

Facts FactsOf(const LiteralMoov& moov) {
    Facts facts;
    FactTaker movie = AddMovieHead(facts, moov);
    for (std::size_t i = 0; i < moov.tracks.size(); ++i) {
        const LiteralTrak& trak = *moov.tracks[i];
        AddTrak(movie.Under(std::to_string(i)), trak, trak.hasEdts, trak.hasUdta);
    }
    const LiteralTrak* video = moov.FirstOf("VIDEO_TRACK");
    const LiteralTrak* audio = moov.FirstOf("AUDIO_TRACK");
    movie.Rate("video rate", video != nullptr ? video->sampleRate : 0.0);
    movie.Rate("audio rate", audio != nullptr ? audio->sampleRate : 0.0);
    movie("video timescale", video != nullptr ? video->timescale : 0);
    movie("audio timescale", audio != nullptr ? audio->timescale : 0);
    const LiteralStsd* stsd = video != nullptr ? video->mdia->minf->stbl->stsd.get() : nullptr;
    const LiteralVideoEntry* known = stsd != nullptr ? stsd->KnownVideo() : nullptr;
    const auto* avcC = known != nullptr ? known->avcC.get() : nullptr;
    const auto* hvcC = known != nullptr ? known->hvcC.get() : nullptr;
    movie("sps", avcC != nullptr && avcC->sps ? 1U : hvcC != nullptr && hvcC->sps ? 2U : 0U);
    movie("pps", avcC != nullptr && avcC->pps ? 1U : hvcC != nullptr && hvcC->pps ? 2U : 0U);
    movie("vps", hvcC != nullptr && hvcC->vps ? 1U : 0U);
    stsd = audio != nullptr ? audio->mdia->minf->stbl->stsd.get() : nullptr;
    const bool aac = stsd != nullptr && stsd->coderFormat == "MP4A_AUDIO_CODER_FORMAT" &&
                     stsd->entries.front().audio != nullptr;
    movie("aac", aac ? 1U : 0U);
    const auto esds = aac ? stsd->entries.front().audio->esds : nullptr;
    if (esds != nullptr && esds->DecoderSpecificBytes() != nullptr) {
        movie.Bytes("aac start", *esds->DecoderSpecificBytes());
    }
    return facts;
}
Facts FactsOf(const CMoov& moov) {
    Facts facts;
    FactTaker movie = AddMovieHead(facts, moov);
    for (std::size_t i = 0; i < moov.tracks.size(); ++i) {
        const CTrak& trak = *moov.tracks[i];
        AddTrak(movie.Under(std::to_string(i)), trak, trak.edts != nullptr, trak.udta != nullptr);
    }
    movie.Rate("video rate", moov.GetVideoSampleRate());
    movie.Rate("audio rate", moov.GetAudioSampleRate());
    movie("video timescale", moov.GetVideoTimescale());
    movie("audio timescale", moov.GetAudioTimescale());
    movie("sps", moov.GetSPS().index());
    movie("pps", moov.GetPPS().index());
    movie("vps", moov.GetVPS() != nullptr ? 1U : 0U);
    const auto aac = moov.GetAudioSpecificInfo();
    movie("aac", aac ? 1U : 0U);
    if (aac && aac->bytes != nullptr) {
        movie.Bytes("aac start", *aac->bytes);
    }
    return facts;
}

std::string Differences(const Facts& program, const Facts& model) {
    std::string differences;
    const auto tell = [&](const std::string& name) {
        const auto ours = program.find(name);
        const auto theirs = model.find(name);
        const std::string left = ours == program.end() ? "nothing" : ours->second;
        const std::string right = theirs == model.end() ? "nothing" : theirs->second;
        if (left != right) {
            differences += name + ": program " + left + ", model " + right + "\n";
        }
    };
    for (const auto& [name, value] : program) {
        tell(name);
    }
    for (const auto& [name, value] : model) {
        if (program.count(name) == 0) {
            tell(name);
        }
    }
    return differences;
}

}  // namespace clipfix::test
