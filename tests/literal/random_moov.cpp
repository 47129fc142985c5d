#include "literal/random_moov.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <iterator>
#include <limits>
#include <optional>
#include <utility>

#include "support/atom_builder.h"

namespace clipfix::test {

namespace random_moovs {

constexpr std::array<const char*, 36> kCodes{
    "moov", "mvhd", "trak", "tkhd", "edts", "elst", "mdia", "mdhd", "hdlr", "minf", "vmhd", "smhd",
    "gmhd", "gmin", "dinf", "dref", "stbl", "stsd", "stts", "stss", "stsc", "stsz", "stco", "co64",
    "ctts", "sdtp", "cslg", "sdps", "sgpd", "sbgp", "csgm", "free", "udta", "stps", "avcC", "esds"};
constexpr std::array<const char*, 7> kFormats{"avc1", "hvc1", "mp4a", "sowt",
                                              "twos", "hev1", "lpcm"};

template <typename Choices>
auto OneOf(const Choices& choices, RandomSource& random) {
    return choices[random.Below(static_cast<std::uint32_t>(std::size(choices)))];
}

// The bytes of a container ahead of its children; nothing for an atom that is no container.
std::optional<std::size_t> HeadOf(std::string_view code) {
    for (const char* plain : {"moov", "trak", "mdia", "minf", "stbl", "edts", "dinf", "wave"}) {
        if (code == plain) {
            return 0;
        }
    }
    if (code == "stsd") {
        return 8;
    }
    if (code == "avc1" || code == "hvc1") {
        return 78;
    }
    return std::nullopt;
}

std::uint32_t AnyNumber(RandomSource& random) {
    constexpr std::array<std::uint32_t, 16> kNumbers{
        0,  1,  2,          3,          4,     7,     8,          9,
        12, 16, 0x7FFFFFFF, 0x80000000, 48000, 30000, 0xFFFFFFFF, 0xFFFFFFF8};
    return random.OneIn(4) ? static_cast<std::uint32_t>(random.Next()) : OneOf(kNumbers, random);
}

void Collect(AtomNode& node, std::vector<AtomNode*>& all) {
    all.push_back(&node);
    for (auto& child : node.children) {
        Collect(child, all);
    }
}

AtomNode Leaf(ByteView atom) {
    return {std::string(atom.begin() + 4, atom.begin() + 8),
            ByteVector(atom.begin() + 8, atom.end()),
            {}};
}

AtomNode RandomTable(const char* code, std::uint32_t width, RandomSource& random) {
    const std::uint32_t entries = random.OneIn(6) ? 0 : random.Below(8);
    const std::uint32_t count = random.OneIn(10) ? AnyNumber(random) : entries;
    ByteBuilder payload;
    payload.Big32(random.OneIn(8) ? AnyNumber(random) : 0);
    if (std::string_view(code) == "stsz") {
        payload.Big32(random.OneIn(4) ? AnyNumber(random) : 0);
    }
    payload.Big32(count);
    for (std::uint32_t i = 0; i < entries * width; ++i) {
        payload.Big32(random.OneIn(8) ? AnyNumber(random) : random.Below(60));
    }
    payload.Zeros(random.OneIn(8) ? random.Below(12) : 0);
    return {code, payload.Take(), {}};
}

ByteVector RandomEntry(const char* format, RandomSource& random) {
    const std::string_view code = format;
    const ByteVector sps{0x67, 0x42, 0xC0, 0x1E, 0xD9, 0x00, 0xA0, 0x47, 0xFE, 0xC8};
    const ByteVector pps{0x68, 0xCE, 0x3C, 0x80};
    // Colour parameters are skipped, whatever they hold and however long they say they are.
    ByteVector colr = random.OneIn(3) ? Atom("colr", {AvcC(0xFC, pps, sps)})
                                      : AtomOf("colr", random.Bytes(random.Below(12)));
    if (random.OneIn(6)) {
        StoreBig32(colr, 0, random.OneIn(2) ? 0 : AnyNumber(random));
    }
    if (code == "avc1" || code == "hvc1" || code == "hev1") {
        ByteVector avcC = AvcC(static_cast<std::uint8_t>(0xFC + random.Below(4)), sps, pps);
        ByteVector hvcC = AtomOf("hvcC", random.Bytes(random.Below(60)));
        for (ByteVector* box : {&avcC, &hvcC}) {
            if (random.OneIn(8)) {
                StoreBig32(*box, 0, AnyNumber(random));
            }
        }
        if (random.OneIn(3)) {
            return VideoEntry(code, 64, 48, {colr, avcC});
        }
        if (random.OneIn(3)) {
            return VideoEntry(code, 64, 48, {hvcC, colr, avcC});
        }
        return random.OneIn(2) ? VideoEntry(code, 64, 48, {avcC, hvcC})
                               : VideoEntry(code, 64, 48, {hvcC});
    }
    ByteVector esds = Esds(random.Bytes(random.Below(6)));
    if (random.OneIn(8)) {
        StoreBig32(esds, 0, AnyNumber(random));
    }
    const auto version = static_cast<std::uint16_t>(random.Below(3));
    if (random.OneIn(5)) {
        const ByteVector earlier = Esds(random.Bytes(4));
        esds.insert(esds.begin(), earlier.begin(), earlier.end());
    }
    if (code == "mp4a") {
        return random.OneIn(2) ? AudioEntry(code, version, {esds})
                               : AudioEntry(code, version, {Atom("wave", {colr, esds})});
    }
    return AudioEntry(code, version, {random.Bytes(random.Below(30))});
}

AtomNode RandomStsd(bool video, RandomSource& random) {
    const std::uint32_t entries = random.OneIn(5) ? random.Below(4) : 1;
    ByteBuilder payload;
    payload.Big32(0).Big32(random.OneIn(8) ? AnyNumber(random) : entries);
    for (std::uint32_t i = 0; i < entries; ++i) {
        const char* format = random.OneIn(5) ? OneOf(kFormats, random)
                             : video         ? kFormats[random.Below(2)]
                                             : kFormats[2 + random.Below(3)];
        ByteVector entry = RandomEntry(format, random);
        if (random.OneIn(8)) {
            StoreBig32(entry, 0, AnyNumber(random));
        }
        if (random.OneIn(8)) {
            entry.resize(random.Below(static_cast<std::uint32_t>(entry.size())) + 1);
            StoreBig32(entry, 0, static_cast<std::uint32_t>(entry.size()));
        }
        payload.Bytes(entry);
    }
    return {"stsd", payload.Take(), {}};
}

AtomNode RandomStbl(bool video, RandomSource& random) {
    AtomNode stbl{"stbl", {}, {}};
    auto& tables = stbl.children;
    tables.push_back(RandomStsd(video, random));
    tables.push_back(RandomTable("stts", 2, random));
    tables.push_back(RandomTable("stsc", 3, random));
    tables.push_back(RandomTable("stsz", 1, random));
    tables.push_back(
        RandomTable(random.OneIn(2) ? "stco" : "co64", random.OneIn(2) ? 1 : 2, random));
    if (random.OneIn(2)) {
        tables.push_back(RandomTable("stss", 1, random));
    }
    if (random.OneIn(2)) {
        tables.push_back(RandomTable("ctts", 2, random));
    }
    for (const char* code : {"sdtp", "cslg", "sdps", "sgpd", "sbgp", "csgm", "free"}) {
        if (random.OneIn(12)) {
            tables.push_back(RandomTable(code, 1, random));
        }
    }
    for (std::size_t i = tables.size(); i > 1 && random.OneIn(3); --i) {
        std::swap(tables[i - 1], tables[random.Below(static_cast<std::uint32_t>(i))]);
    }
    return stbl;
}

AtomNode RandomTrak(RandomSource& random) {
    const std::uint32_t kind = random.Below(9);
    const bool video = kind < 4;
    const char* subtype = video ? "vide" : kind < 8 ? "soun" : "tmcd";
    AtomNode minf{"minf", {}, {}};
    if (!random.OneIn(8)) {
        minf.children.push_back(Leaf(video ? Vmhd() : kind < 8 ? Smhd() : Atom("gmhd")));
    }
    if (random.OneIn(2)) {
        minf.children.push_back(Leaf(Hdlr("url ")));
    }
    minf.children.push_back(TakeApart(Dinf()));
    minf.children.push_back(RandomStbl(video, random));
    if (random.OneIn(12)) {
        minf.children.push_back(RandomStbl(video, random));
    }
    AtomNode mdia{"mdia", {}, {}};
    mdia.children.push_back(Leaf(Mdhd(random.OneIn(6) ? AnyNumber(random) : 1 + random.Below(90000),
                                      random.OneIn(6) ? AnyNumber(random) : 1 + random.Below(9000),
                                      static_cast<std::uint16_t>(random.Next()), 7)));
    if (!random.OneIn(6)) {
        mdia.children.push_back(Leaf(Hdlr(subtype)));
    }
    mdia.children.push_back(minf);
    if (random.OneIn(12)) {
        minf.children.back() =
            random.OneIn(2) ? RandomStbl(video, random) : AtomNode{"stbl", {}, {}};
        mdia.children.push_back(minf);
    }
    AtomNode trak{"trak", {}, {}};
    trak.children.push_back(Leaf(Tkhd(random.Below(9), AnyNumber(random), 640, 480)));
    if (random.OneIn(3)) {
        trak.children.push_back({"edts", {}, {RandomTable("elst", 3, random)}});
    }
    trak.children.push_back(mdia);
    if (random.OneIn(3)) {
        trak.children.push_back(Leaf(AtomOf("udta", random.Bytes(random.Below(20)))));
    }
    if (trak.children.size() > 2 && random.OneIn(3)) {
        std::swap(trak.children.back(), trak.children[1]);
    }
    for (AtomNode* last : {&trak.children.back(), &trak}) {  // as small as an atom can be
        if (random.OneIn(12)) {
            last->children.push_back({OneOf(kCodes, random), {}, {}});
        }
    }
    return trak;
}

}  // namespace random_moovs

ByteVector AtomNode::Image() const {
    ByteBuilder payload;
    payload.Bytes(head);
    for (const auto& child : children) {
        payload.Bytes(child.Image());
    }
    return AtomOf(code, payload.View());
}

AtomNode TakeApart(ByteView atom) {
    AtomNode node{std::string(atom.begin() + 4, atom.begin() + 8), {}, {}};
    const ByteView payload = atom.subspan(8);
    const auto head = random_moovs::HeadOf(node.code);
    if (!head || payload.size() < *head) {
        node.head.assign(payload.begin(), payload.end());
        return node;
    }
    node.head.assign(payload.begin(), payload.begin() + static_cast<std::ptrdiff_t>(*head));
    std::size_t at = *head;
    while (payload.size() - at >= 8) {
        const std::uint32_t size = ReadBig32(payload, at);
        if (size < 8 || size > payload.size() - at) {
            break;
        }
        node.children.push_back(TakeApart(payload.subspan(at, size)));
        at += size;
    }
    if (at < payload.size()) {  // not atoms all the way: leave it whole
        node.children.clear();
        node.head.assign(payload.begin(), payload.end());
    }
    return node;
}

AtomNode RandomMoov(RandomSource& random) {
    AtomNode moov{"moov", {}, {}};
    const std::uint32_t timescale = random.OneIn(5) ? random_moovs::AnyNumber(random) : 1000;
    if (!random.OneIn(12)) {
        moov.children.push_back(random_moovs::Leaf(Mvhd(timescale, 999)));
    }
    for (std::uint32_t i = 1 + random.Below(4); i > 0; --i) {
        moov.children.push_back(random_moovs::RandomTrak(random));
    }
    return moov;
}

void ReshapeTree(AtomNode& moov, RandomSource& random) {
    using random_moovs::AnyNumber;
    using random_moovs::OneOf;
    std::vector<AtomNode*> all;
    random_moovs::Collect(moov, all);
    AtomNode& parent = *OneOf(all, random);
    auto& children = parent.children;
    const auto any = [&] { return random.Below(static_cast<std::uint32_t>(children.size())); };
    AtomNode stranger{OneOf(random_moovs::kCodes, random),
                      random.Bytes(random.OneIn(2) ? 0 : random.Below(40)),
                      {}};
    switch (random.Below(8)) {
        case 0:
            if (!children.empty()) {
                children.erase(children.begin() + any());
            }
            break;
        case 1:
            if (!children.empty()) {
                AtomNode copy = children[any()];
                children.insert(children.begin() + any(), std::move(copy));
            }
            break;
        case 2:
            if (!children.empty()) {
                std::swap(children[any()], children[any()]);
            }
            break;
        case 3:
            if (&parent != &moov) {
                parent.code = random.OneIn(3) ? OneOf(random_moovs::kFormats, random)
                                              : OneOf(random_moovs::kCodes, random);
            }
            break;
        case 4:  // an unknown atom with a known one inside
            if (!children.empty()) {
                AtomNode& child = children[any()];
                child = {"zzzz", random.Bytes(random.Below(9)), {AtomNode(child)}};
            }
            break;
        case 5:
            if (!children.empty()) {
                children.insert(random.OneIn(2) ? children.end() : children.begin() + any(),
                                stranger);
            }
            break;
        default: {  // a number of a leaf
            if (parent.head.size() >= 4) {
                const std::uint32_t numbers = static_cast<std::uint32_t>(parent.head.size()) / 4;
                const std::uint32_t which =
                    random.Below(random.OneIn(2) ? std::min(numbers, 4U) : numbers);
                StoreBig32(parent.head, std::size_t{which} * 4, AnyNumber(random));
            }
            if (random.OneIn(4)) {
                parent.head.resize(
                    random.Below(static_cast<std::uint32_t>(parent.head.size()) + 9));
            }
            break;
        }
    }
}

void DamageBytes(ByteVector& moov, RandomSource& random) {
    const auto size = static_cast<std::uint32_t>(moov.size());
    if (size < 9) {
        return;
    }
    std::vector<std::size_t> atoms;  // where the codes of atoms stand
    for (std::size_t i = 4; i + 4 <= moov.size(); ++i) {
        for (const char* code : random_moovs::kCodes) {
            if (MatchesAt(moov, i, code)) {
                atoms.push_back(i);
            }
        }
    }
    const std::size_t atom = atoms.empty() ? 4 : random_moovs::OneOf(atoms, random);
    const std::uint32_t old = ReadBig32(moov, atom - 4);
    const auto at = moov.begin() + random.Below(size);
    const std::size_t other = atoms.empty() ? 4 : random_moovs::OneOf(atoms, random);
    const auto before = std::lower_bound(atoms.begin(), atoms.end(), atom);
    switch (random.Below(10)) {
        case 8: {  // sizes that still add up
            const std::uint32_t moved = random.Below(33) - 16;
            StoreBig32(moov, atom - 4, old + moved);
            StoreBig32(moov, other - 4, ReadBig32(moov, other - 4) - moved);
            break;
        }
        case 9:  // about as long as the atom around it, or ahead of it
            if (before != atoms.begin() && before != atoms.end()) {
                StoreBig32(moov, atom - 4,
                           ReadBig32(moov, *std::prev(before) - 4) - random.Below(20));
            }
            break;
        case 0:
        case 1:
            StoreBig32(moov, atom - 4, random_moovs::AnyNumber(random));
            break;
        case 2:
            StoreBig32(moov, atom - 4, old + random.Below(17) - 8);
            break;
        case 3: {  // the 64-bit form of a header
            ByteVector wide;
            AppendBig32(wide, 1);
            wide.insert(wide.end(), moov.begin() + static_cast<std::ptrdiff_t>(atom),
                        moov.begin() + static_cast<std::ptrdiff_t>(atom) + 4);
            AppendBig64(wide, old + 8ULL);
            moov.erase(moov.begin() + static_cast<std::ptrdiff_t>(atom) - 4,
                       moov.begin() + static_cast<std::ptrdiff_t>(atom) + 4);
            moov.insert(moov.begin() + static_cast<std::ptrdiff_t>(atom) - 4, wide.begin(),
                        wide.end());
            break;
        }
        case 4:
            moov.resize(random.Below(size));
            break;
        case 5:
            moov.erase(at, at + std::min<std::ptrdiff_t>(moov.end() - at, 1 + random.Below(9)));
            break;
        default:
            *at = random.OneIn(2) ? static_cast<std::uint8_t>(random.Next() >> 20U)
                                  : static_cast<std::uint8_t>(*at ^ (1U << random.Below(8)));
            break;
    }
}

LiteralRequest RandomRequest(bool video, double referenceRate, RandomSource& random) {
    LiteralRequest request;
    const auto few = [&random] {
        return random.OneIn(4) ? 0 : random.OneIn(3) ? 1 : random.Below(90);
    };
    for (std::uint32_t i = few(); i > 0; --i) {
        request.stcoEntries.push_back(random.OneIn(3) ? random.Next() : random.Below(1U << 30U));
    }
    for (std::uint32_t i = few(); i > 0; --i) {
        request.stszEntries.push_back(random_moovs::AnyNumber(random));
    }
    for (std::uint32_t i = few(); i > 0; --i) {
        request.stscEntries.push_back(
            {random.Below(99), random_moovs::AnyNumber(random), 1 + random.Below(2)});
    }
    request.timescale = random.OneIn(3) ? random_moovs::AnyNumber(random) : 1 + random.Below(90000);
    using Limits = std::numeric_limits<double>;
    const std::array<double, 12> rates{0.0,
                                       -0.0,
                                       Limits::quiet_NaN(),
                                       Limits::infinity(),
                                       1e-300,
                                       1e300,
                                       -25.0,
                                       Limits::denorm_min(),
                                       29.97,
                                       25.0,
                                       48000.0,
                                       1.0 / 3.0};
    request.sampleRate = random.OneIn(2) ? referenceRate : random_moovs::OneOf(rates, random);
    const bool named = random.OneIn(12) ? !video : video;
    request.requestType = named ? "VIDEO_REQUEST" : "AUDIO_REQUEST";
    if (random.OneIn(12)) {
        request.requestType = named ? "Video_request" : "audio_request";
    }
    return request;
}

}  // namespace clipfix::test
