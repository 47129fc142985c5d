#include "moviefile/structure_check.h"

#include <algorithm>
#include <array>
#include <new>
#include <string_view>

#include "base/fourcc.h"
#include "moviefile/movie_file.h"

namespace clipfix {

namespace {

constexpr std::array<std::string_view, 5> kTypeWords{"ftyp", "wide", "free", "mdat", "moov"};
constexpr std::size_t kWordLength = 4;

// How far a search for the type words may move on when the byte under a word's last letter is the
// index: 0 where a word could end there, the word's length where the byte is in none of them.
constexpr std::array<std::uint8_t, 256> MakeSearchSteps() {
    std::array<std::uint8_t, 256> steps{};
    steps.fill(kWordLength);
    for (const std::string_view word : kTypeWords) {
        for (std::size_t i = 0; i < kWordLength; ++i) {
            std::uint8_t& step = steps[static_cast<std::uint8_t>(word[i])];
            step = std::min(step, static_cast<std::uint8_t>(kWordLength - 1 - i));
        }
    }
    return steps;
}
constexpr std::array<std::uint8_t, 256> kSearchSteps = MakeSearchSteps();

bool HasTypeWordAt(ByteView bytes, std::uint64_t at) {
    return std::any_of(kTypeWords.begin(), kTypeWords.end(),
                       [&](std::string_view word) { return MatchesAt(bytes, at, word); });
}

// The first position from `at` on, below `end`, whose bytes 4 to 7 spell one of the words; `end`
// when there is none. `end` + 7 lies inside `bytes`.
std::uint64_t FindTypeWord(ByteView bytes, std::uint64_t at, std::uint64_t end) {
    while (at < end) {
        const std::uint8_t step = kSearchSteps[bytes[at + 7]];
        if (step == 0 && HasTypeWordAt(bytes, at + 4)) {
            return at;
        }
        at += std::max<std::uint8_t>(step, 1);
    }
    return end;
}

// Keeps the walk from believing the word "moov" by chance in data: a first child that is known
// must follow, behind a head of 8 or of 16 bytes.
bool HasKnownFirstChild(ByteView bytes, std::uint64_t at) {
    constexpr std::array<std::string_view, 5> kChildren{"mvhd", "uuid", "free", "udta", "trak"};
    return std::any_of(kChildren.begin(), kChildren.end(), [&](std::string_view child) {
        return MatchesAt(bytes, at + 12, child) || MatchesAt(bytes, at + 20, child);
    });
}

}  // namespace

void StructureCheck::Run() {
    JobState& state = job_.state;
    const auto file = platform::File::OpenForReading(state.g_strCheckedPath);
    if (file) {
        RunOn(file.Value());
        return;
    }
    Begin();
    state.g_nMessageKind = 4;
    state.g_bJobFailed = 1;
    // Settled: the two texts of the message are fetched, and no dialog is opened.
    static_cast<void>(job_.frontEnd.Text("IDS_MOVERROR1"));
    static_cast<void>(job_.frontEnd.Text("IDS_INFORMATION"));
}

void StructureCheck::RunOn(const platform::ReadableFile& file) {
    JobState& state = job_.state;
    Begin();
    read_.g_strVideoCoderFormat = state.g_strVideoCoderFormat;
    read_.g_strAudioCoderFormat = state.g_strAudioCoderFormat;
    Walk(file);
    state.g_strVideoCoderFormat = read_.g_strVideoCoderFormat;
    state.g_strAudioCoderFormat = read_.g_strAudioCoderFormat;
}

void StructureCheck::Begin() {
    job_.state.g_lJobAlive = 1;
    movie_.pMoov.reset();
    movie_.pMdat.reset();
    movie_.pFtyp.reset();
}

// Plan: 1 each round reads one buffer at the walk's position. 2 A walk that has seen no media data
// in ten rounds makes one far jump. 3 The scan of the buffer acts on type words, and tells how far
// the walk moves on. The position, not the bound of rounds, ends the walk of a normal file.
void StructureCheck::Walk(const platform::ReadableFile& file) {
    constexpr std::uint64_t kRoundBeforeJump = 10;
    JobState& state = job_.state;
    buffer_.assign(kReadSize, 0);
    fileSize_ = file.Size();
    position_ = 0;
    state.g_ullCheckedSize = fileSize_;
    state.g_ullCheckedPos = 0;
    const std::uint64_t rounds = fileSize_ / kRoundsUnit + (fileSize_ % kRoundsUnit != 0 ? 1 : 0);
    for (std::uint64_t round = 0; round < rounds && position_ < fileSize_; ++round) {
        const bool jumpsLater = round < kRoundBeforeJump && !movie_.pMdat && rounds > 100;
        if (round == kRoundBeforeJump && !movie_.pMdat && rounds > 100) {
            JumpFar(round, rounds);
        }
        if (!MayGoOn()) {
            return;
        }
        if (!ReadRound(file)) {
            // The rounds that follow would ask for the same bytes again. All that can still
            // change the place is the far jump.
            if (!jumpsLater) {
                return;
            }
            round = kRoundBeforeJump - 1;
            continue;
        }
        if (!MayGoOn()) {
            return;
        }
        position_ += ScanRound(file);
        state.g_ullCheckedPos = position_;
    }
}

// The figure stands as it is. The rounds count units of 127 bytes and the stride is 66044, so that
// the product often lies behind the file's end, which ends the walk; it is taken in 32 bits, so
// that it may also land anywhere inside a large file. The round goes on at the new place.
void StructureCheck::JumpFar(std::uint64_t& round, std::uint64_t rounds) {
    round = rounds / 100 * 90;
    position_ = static_cast<std::uint32_t>(kJumpStride * static_cast<std::uint32_t>(round));
    job_.state.g_ullCheckedPos = position_;
}

bool StructureCheck::ReadRound(const platform::ReadableFile& file) {
    for (const std::uint64_t length : {kReadSize, kFallbackRead}) {
        std::fill(buffer_.begin(), buffer_.end(), std::uint8_t{0});
        if (const auto got = file.ReadAt(position_, ByteSpan(buffer_).first(length))) {
            std::fill(buffer_.begin() + static_cast<std::ptrdiff_t>(got.Value()), buffer_.end(),
                      std::uint8_t{0});
            return true;
        }
    }
    return false;
}

bool StructureCheck::MayGoOn() {
    return job_.control.KeepGoing(JobControl::Work::StructureCheck);
}

std::uint64_t StructureCheck::ScanRound(const platform::ReadableFile& file) {
    const ByteView bytes = buffer_;
    // Divided first: of a file of less than 100 bytes no share is left at all.
    const std::uint64_t largestSmallAtom = fileSize_ / 100 * 30;
    std::uint64_t at = 0;
    while ((at = FindTypeWord(bytes, at, std::max(at, kScanSpan))) < kScanSpan) {
        const std::uint32_t size = ReadBig32(bytes, at);
        const bool endsInFile = position_ + at + size <= fileSize_;
        std::uint64_t step = 1;
        switch (ReadBig32(bytes, at + 4)) {
            case FourCC("ftyp"):
                if (size <= largestSmallAtom && size > 8) {
                    // Of an atom that reaches behind the buffer, what there is.
                    movie_.pFtyp = CFtyp(SubView(bytes, at, size), size);
                    step = size;
                }
                break;
            case FourCC("wide"):
            case FourCC("free"):
                step = size <= largestSmallAtom && size > 8 ? size : 1;
                break;
            case FourCC("mdat"):
                if (endsInFile && size > 0) {
                    // Settled: the record gets the place of the buffer and not of the atom, and
                    // what is jumped over is its size cut to 32 bits.
                    movie_.pMdat =
                        CMdat(SubView(bytes, at, 16), static_cast<std::uint32_t>(position_));
                    step = std::max<std::uint32_t>(movie_.pMdat->size, 1);
                }
                break;
            case FourCC("moov"):
                if (HasKnownFirstChild(bytes, at) && endsInFile && size > 8) {
                    TakeMoov(file, position_ + at, size);
                    // One byte short of the atom's end, and the round's scan is over. Settled.
                    return at + size - 1;
                }
                break;
            default:
                break;
        }
        at += step;
    }
    return at;
}

// The last tree that is read stands: one without tracks clears an earlier one.
void StructureCheck::TakeMoov(const platform::ReadableFile& file, std::uint64_t offset,
                              std::uint32_t size) {
    movie_.pMoov.reset();
    try {
        ByteVector atom(size);
        platform::WindowReader reader(file);
        for (std::size_t done = 0; done < atom.size();) {
            job_.control.WaitWhileSuspended(JobControl::Worker::Repair);
            const std::size_t step =
                std::min(atom.size() - done, platform::WindowReader::kLargestWindow);
            static_cast<void>(reader.Read(offset + done, ByteSpan(atom).subspan(done, step)));
            done += step;
        }
        auto moov = std::make_unique<CMoov>(atom, read_);
        if (!moov->tracks.empty()) {
            movie_.pMoov = std::move(moov);
        }
    } catch (const std::bad_alloc&) {
        // An atom that does not fit into memory is one without tracks.
    }
}

}  // namespace clipfix
