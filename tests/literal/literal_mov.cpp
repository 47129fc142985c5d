#include "literal/literal_mov.h"

#include <algorithm>
#include <deque>
#include <neaacdec.h>
#include <optional>

#include "atoms/kind_tags.h"
#include "codec/nalu.h"

namespace clipfix::test {

namespace {

class VectorSink final : public MoovSink {
  public:
    explicit VectorSink(ByteVector& bytes) : bytes_(bytes) {}
    Result<void> Append(ByteView more) override {
        AppendBytes(bytes_, more);
        return {};
    }
    Result<void> Flush() override { return {}; }

  private:
    ByteVector& bytes_;
};

class LiteralScan {
  public:
    LiteralScan(ByteView file, LiteralCheck& reference) : file_(file), reference_(reference) {}

    LiteralMovResult Run() {
        const auto& format = reference_.read.g_strVideoCoderFormat;
        if (SameTag(format, kAvc1VideoCoderFormat) || SameTag(format, kHvc1VideoCoderFormat)) {
            LocateDataForks();
        }
        if (chunks_.empty()) {
            result_.nothingFound = true;
            return std::move(result_);
        }
        result_.chunks.assign(chunks_.begin(), chunks_.end());
        WriteDataForks();
        return std::move(result_);
    }

  private:
    bool TakeParameterSets() {
        CMoov& moov = *reference_.moov;
        const auto& first = moov.tracks.front();
        nalLengthSize_ = first->mdia->minf->stbl->stsd->GetNALLengthSize();
        sps_ = moov.GetSPS();
        pps_ = moov.GetPPS();
        if (SameTag(reference_.read.g_strVideoCoderFormat, kHvc1VideoCoderFormat)) {
            vps_ = moov.GetVPS();
            const auto* sps = std::get_if<std::shared_ptr<const SPS_265>>(&sps_);
            const auto* pps = std::get_if<std::shared_ptr<const PPS_265>>(&pps_);
            if (sps == nullptr || pps == nullptr || !*sps || !*pps || !vps_) {
                return false;
            }
            sets_.vps = vps_.get();
            sets_.sps265 = sps->get();
            sets_.pps265 = pps->get();
            return true;
        }
        const auto* sps = std::get_if<std::shared_ptr<const CSPS>>(&sps_);
        const auto* pps = std::get_if<std::shared_ptr<const CPPS>>(&pps_);
        if (sps == nullptr || pps == nullptr || !*sps || !*pps) {
            return false;
        }
        sets_.sps = sps->get();
        sets_.pps = pps->get();
        return true;
    }

    [[nodiscard]] std::optional<CNALU> ReadNalAt(std::uint64_t position) const {
        const ByteView arrived = position >= file_.size()
                                     ? ByteView{}
                                     : SubView(file_, static_cast<std::size_t>(position), 50);
        return CNALU::Parse(arrived, nalLengthSize_, sets_);
    }

    static void UpdateStsc(std::vector<CSampleToChunkEntery>& list, std::uint64_t chunk,
                           std::uint32_t n) {
        if (list.empty() || list.back().samplesPerChunk != n) {
            list.emplace_back(static_cast<std::uint32_t>(chunk), n, 1U);
        }
    }

    [[nodiscard]] bool MergesH264(const CNALU& now, const CNALU& before) const {
        return now.nal_unit_type == before.nal_unit_type && now.slice_type == before.slice_type &&
               now.frame_num == before.frame_num &&
               now.first_mb_in_slice > before.first_mb_in_slice;
    }
    static bool Named(const CNALU& unit, std::string_view name) { return SameTag(unit.name, name); }
    static bool MergesH265(const CNALU& now, const CNALU& before, bool mark) {
        if (mark && Named(now, "Slice") && now.first_mb_in_slice == 0 &&
            now.nal_unit_type == before.nal_unit_type) {
            return true;
        }
        if (Named(before, "Slice") && Named(now, "Unspecified")) {
            return true;
        }
        if ((Named(before, "VPS") || Named(before, "SPS") || Named(before, "PPS")) &&
            Named(now, "Slice")) {
            return true;
        }
        return (Named(before, "VPS") || Named(before, "SPS") || Named(now, "PPS")) &&
               (Named(now, "VPS") || Named(now, "SPS") || Named(before, "PPS"));
    }

    int WalkNalRun(std::uint64_t position, std::vector<LiteralRecord>& run,
                   std::uint32_t& sampleCount) const {
        auto current = ReadNalAt(position);
        std::optional<CNALU> previous;
        int count = 0;
        bool mark = false;
        while (current && current->size < 2'200'000) {
            ++count;
            const bool h265 = sets_.vps != nullptr;
            const bool merges = previous && (h265 ? MergesH265(*current, *previous, mark)
                                                  : MergesH264(*current, *previous));
            if (merges) {
                run.back().size += current->size;
            } else {
                if (h265) {
                    if (Named(*current, "Slice") || Named(*current, "SPS") ||
                        Named(*current, "VPS")) {
                        ++sampleCount;
                    }
                    if (Named(*current, "Slice") && current->first_mb_in_slice == 1) {
                        mark = true;
                    }
                } else if (current->nal_unit_type != 6 && current->nal_unit_type != 8 &&
                           current->nal_unit_type != 9) {
                    ++sampleCount;
                }
                run.push_back({h265 ? "HVC1" : "AVC1", position, current->size,
                               current->nal_unit_type, std::string(current->name)});
            }
            position += current->size;
            previous = current;
            current = ReadNalAt(position);
        }
        return count;
    }

    [[nodiscard]] std::vector<LiteralRecord> ProbeAacFrames(std::uint64_t position,
                                                            std::uint64_t length) const {
        std::vector<LiteralRecord> frames;
        const auto info = reference_.moov->GetAudioSpecificInfo();
        if (!info || !info->bytes || info->bytes->empty()) {
            return frames;
        }
        ByteVector start = *info->bytes;
        start.resize(std::max<std::size_t>(start.size(), 2));
        NeAACDecHandle decoder = NeAACDecOpen();
        unsigned long sampleRate = 0;
        unsigned char channels = 0;
        if (NeAACDecInit2(decoder, start.data(), 2, &sampleRate, &channels) != 0) {
            NeAACDecClose(decoder);
            return frames;
        }
        ByteVector range(static_cast<std::size_t>(length), 0);
        const ByteView there = SubView(file_, static_cast<std::size_t>(position), range.size());
        std::copy(there.begin(), there.end(), range.begin());
        std::uint64_t place = 0;
        while (place < length) {
            ByteVector probe(range.begin() + static_cast<std::ptrdiff_t>(place),
                             range.begin() + static_cast<std::ptrdiff_t>(
                                                 std::min<std::uint64_t>(place + 1024, length)));
            if (probe[0] == 0) {
                ++place;
                continue;
            }
            const auto size = static_cast<unsigned long>(probe.size());
            NeAACDecFrameInfo hInfo{};
            void* decoded = NeAACDecDecode(decoder, &hInfo, probe.data(), size);
            if (hInfo.error == 21) {
                const NeAACDecConfigurationPtr first = NeAACDecGetCurrentConfiguration(decoder);
                NeAACDecHandle other = NeAACDecOpen();
                const NeAACDecConfigurationPtr second = NeAACDecGetCurrentConfiguration(other);
                if (first->defSampleRate != 0) {
                    second->defSampleRate = first->defSampleRate;
                }
                second->defObjectType = first->defObjectType;
                second->outputFormat = first->outputFormat;
                NeAACDecSetConfiguration(other, second);
                unsigned long i_rate = 0;
                unsigned char i_channels = 0;
                if (NeAACDecInit(other, nullptr, 0, &i_rate, &i_channels) < 0) {
                    NeAACDecClose(other);
                    NeAACDecSetConfiguration(decoder, first);
                } else {
                    NeAACDecClose(decoder);
                    decoder = other;
                    decoded = NeAACDecDecode(decoder, &hInfo, probe.data(), size);
                }
            }
            if (decoded != nullptr && hInfo.bytesconsumed > 0) {
                frames.push_back({"AAC", position + place, hInfo.bytesconsumed, -1, ""});
                place += hInfo.bytesconsumed;
            } else {
                ++place;
            }
        }
        NeAACDecClose(decoder);
        return frames;
    }

    void TakeAac(std::uint64_t position, std::uint64_t length, bool front) {
        auto frames = ProbeAacFrames(position, length);
        if (frames.empty()) {
            return;
        }
        ++audioChunk_;
        UpdateStsc(*audioStsc_, audioChunk_, static_cast<std::uint32_t>(frames.size()));
        audioSamples_.insert(audioSamples_.end(), frames.begin(), frames.end());
        if (front) {
            chunks_.push_front(std::move(frames));
        } else {
            chunks_.push_back(std::move(frames));
        }
    }

    void TakeGap(const LiteralRecord& firstOfRun) {
        const auto& last = videoSamples_.back();
        const std::uint64_t start = last.offset + last.size;
        const std::uint64_t size = firstOfRun.offset - start;
        const auto& format = reference_.read.g_strAudioCoderFormat;
        if (SameTag(format, kMp4aAudioCoderFormat)) {
            if (audioSamples_.empty()) {
                TakeAac(0, videoSamples_.front().offset, true);
            }
            TakeAac(start, size, false);
        } else if (SameTag(format, kSowtAudioCoderFormat)) {
            const LiteralRecord record{"SOWT", start, size, -1, ""};
            ++audioChunk_;
            UpdateStsc(*audioStsc_, audioChunk_, static_cast<std::uint32_t>(size / 4));
            chunks_.push_back({record});
            audioSamples_.push_back(record);
        } else if (SameTag(format, kTwosAudioCoderFormat)) {
            const LiteralRecord record{"SOWT", start, size, -1, ""};
            chunks_.push_back({record});
            audioSamples_.push_back(record);
        }
    }

    void ShowPercent(int percent, int& last) {
        if (percent != last) {
            result_.percents.push_back(percent);
            last = percent;
        }
    }

    void LocateDataForks() {
        if (!TakeParameterSets()) {
            return;
        }
        int lastPercent = 1000;
        for (std::uint64_t position = 0; position < file_.size();) {
            ShowPercent(static_cast<int>(position * 100 / file_.size()), lastPercent);
            std::vector<LiteralRecord> run;
            std::uint32_t sampleCount = 0;
            if (WalkNalRun(position, run, sampleCount) <= 2) {
                ++position;
                continue;
            }
            if (!videoSamples_.empty()) {
                TakeGap(run.front());
            }
            ++videoChunk_;
            position = run.back().offset + run.back().size;
            UpdateStsc(*videoStsc_, videoChunk_, sampleCount);
            videoSamples_.insert(videoSamples_.end(), run.begin(), run.end());
            chunks_.push_back(run);
        }
    }

    static bool IsPending(const LiteralRecord& record) {
        if (record.name == "AVC1") {
            return record.nalUnitType == 6 || record.nalUnitType == 8 || record.nalUnitType == 9;
        }
        return SameTag(record.unitName, "Unspecified") || SameTag(record.unitName, "PPS") ||
               SameTag(record.unitName, "SEI") || SameTag(record.unitName, "AUD");
    }

    void WriteDataForks() {
        ByteVector& out = result_.output;
        out.resize(16);
        CAtomCreationRequest video;
        CAtomCreationRequest audio;
        std::uint32_t pending = 0;
        std::uint32_t counter = 0;
        int lastPercent = 1000;
        for (const auto& chunk : chunks_) {
            ShowPercent(
                static_cast<int>(counter * 100 / static_cast<std::uint32_t>(chunks_.size())),
                lastPercent);
            ++counter;
            const std::string& name = chunk.front().name;
            (name == "AVC1" || name == "HVC1" ? video : audio).stcoEntries.push_back(out.size());
            for (const auto& record : chunk) {
                const auto size = static_cast<std::uint32_t>(record.size);
                if (record.name == "AVC1" || record.name == "HVC1") {
                    if (IsPending(record)) {
                        pending += size;
                    } else {
                        video.stszEntries.push_back(pending + size);
                        pending = 0;
                    }
                } else if (record.name == "AAC") {
                    audio.stszEntries.push_back(size);
                }
                const ByteView bytes =
                    SubView(file_, static_cast<std::size_t>(record.offset), size);
                AppendBytes(out, bytes);
                AppendZeros(out, size - bytes.size());
            }
        }
        WriteMovieAtoms(video, audio);
    }

    void WriteMovieAtoms(CAtomCreationRequest& video, CAtomCreationRequest& audio) {
        CMoov& moov = *reference_.moov;
        video.requestType = "VIDEO_REQUEST";
        video.stscEntries = videoStsc_;
        video.timescale = moov.GetVideoTimescale();
        video.sampleRate = moov.GetVideoSampleRate();
        audio.requestType = "AUDIO_REQUEST";
        audio.stscEntries = audioStsc_;
        audio.timescale = moov.GetAudioTimescale();
        audio.sampleRate = moov.GetAudioSampleRate();
        ByteVector& out = result_.output;
        const auto repaired = moov.CreateMoov(video, audio);
        StoreBig32(out, 0, 1);
        StoreBig32(out, 4, 0x6D646174U);
        StoreBig64(out, 8, out.size());
        VectorSink sink(out);
        static_cast<void>(repaired->WriteMoov(sink));
    }

    ByteView file_;
    LiteralCheck& reference_;
    LiteralMovResult result_;
    std::uint32_t nalLengthSize_ = 0;
    AnySps sps_;
    AnyPps pps_;
    std::shared_ptr<const CVPS> vps_;
    ReferenceParameterSets sets_;
    std::vector<LiteralRecord> videoSamples_;
    std::vector<LiteralRecord> audioSamples_;
    std::deque<std::vector<LiteralRecord>> chunks_;
    std::uint64_t videoChunk_ = 0;
    std::uint64_t audioChunk_ = 0;
    std::shared_ptr<std::vector<CSampleToChunkEntery>> videoStsc_ =
        std::make_shared<std::vector<CSampleToChunkEntery>>();
    std::shared_ptr<std::vector<CSampleToChunkEntery>> audioStsc_ =
        std::make_shared<std::vector<CSampleToChunkEntery>>();
};

bool PassesChildTest(ByteView buffer, std::size_t j) {
    for (const std::size_t at : {j + 12, j + 20}) {
        for (const char* word : {"mvhd", "uuid", "free", "udta", "trak"}) {
            if (MatchesAt(buffer, at, word)) {
                return true;
            }
        }
    }
    return false;
}

}  // namespace

LiteralCheck LiteralReadStructure(ByteView file) {
    LiteralCheck check;
    const std::uint64_t size = file.size();
    const std::uint64_t rounds = size / 127 + (size % 127 != 0 ? 1 : 0);
    std::uint64_t position = 0;
    for (std::uint64_t r = 0; r < rounds && position < size; ++r) {
        if (r == 10 && !check.foundMdat && rounds > 100) {
            r = rounds / 100 * 90;
            position = static_cast<std::uint32_t>(66044U * static_cast<std::uint32_t>(r));
        }
        ByteVector buffer(66556, 0);
        if (position < size) {
            const ByteView part = SubView(file, static_cast<std::size_t>(position), 66556);
            std::copy(part.begin(), part.end(), buffer.begin());
        }
        std::uint64_t j = 0;
        while (j < 66020) {
            const auto at = static_cast<std::size_t>(j);
            const std::uint64_t atomSize = ReadBig32(buffer, at);
            const bool small = atomSize <= size / 100 * 30 && atomSize > 8;
            if (MatchesAt(buffer, at + 4, "ftyp") || MatchesAt(buffer, at + 4, "wide") ||
                MatchesAt(buffer, at + 4, "free")) {
                if (small && MatchesAt(buffer, at + 4, "ftyp")) {
                    check.foundFtyp = true;
                }
                j += small ? atomSize : 1;
            } else if (MatchesAt(buffer, at + 4, "mdat")) {
                if (position + j + atomSize <= size && atomSize > 0) {
                    const CMdat mdat(SubView(buffer, at, 16), static_cast<std::uint32_t>(position));
                    check.foundMdat = true;
                    check.mdatSize = mdat.size;
                    check.mdatOffset = mdat.offset;
                    j += mdat.size == 0 ? 1 : mdat.size;
                } else {
                    j += 1;
                }
            } else if (MatchesAt(buffer, at + 4, "moov") && PassesChildTest(buffer, at) &&
                       position + j + atomSize <= size && atomSize > 8) {
                auto moov =
                    std::make_unique<CMoov>(SubView(file, static_cast<std::size_t>(position + j),
                                                    static_cast<std::size_t>(atomSize)),
                                            check.read);
                check.moov = moov->tracks.empty() ? nullptr : std::move(moov);
                j += atomSize - 1;
                break;
            } else {
                j += 1;
            }
        }
        position += j;
    }
    return check;
}

LiteralMovResult LiteralMovRepair(ByteView damaged, LiteralCheck& reference) {
    return LiteralScan(damaged, reference).Run();
}

}  // namespace clipfix::test
