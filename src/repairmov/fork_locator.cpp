#include "repairmov/fork_locator.h"

#include <algorithm>
#include <new>
#include <utility>

#include "atoms/kind_tags.h"

namespace clipfix {

namespace {

// Gaps that may wait for their answers at once. One costs a few bytes as long as it waits.
constexpr std::size_t kMostPending = 4096;

int PercentOf(std::uint64_t position, std::uint64_t size) {
    return static_cast<int>(position * 100 / size);
}

bool WantsAac(const ScanSettings& settings) {
    return SameTag(settings.audioCoderFormat, kMp4aAudioCoderFormat);
}

}  // namespace

ForkLocator::ForkLocator(JobContext job, const platform::ReadableFile& file,
                         const ScanSettings& settings)
    : job_(job),
      file_(file),
      settings_(settings),
      progress_(job),
      scanReader_(file),
      heads_(file),
      prefetch_(file),
      blockTest_(settings.parameterSets.View(), settings.nalLengthSize,
                 NalWalker::kUnitTooLarge - 1),
      walker_(settings.parameterSets.View(), settings.nalLengthSize,
              [this](std::uint64_t offset) {
                  prefetch_.GoOnFrom(offset);
                  return heads_.At(offset);
              }),
      probe_(WantsAac(settings) ? ByteView(settings.audioSpecificInfo) : ByteView()),
      pool_(probe_, file, probe_.CanStart() ? settings.probeThreads : 1,
            [this] { return progress_.MayGoOn(); }) {}

bool ForkLocator::Run() {
    // The one place of a scan where running out of memory is swallowed.
    try {
        progress_.Begin("Locating audio / video data forks..");
        if (!Scan()) {
            return false;
        }
        PlaceAll();
    } catch (const std::bad_alloc&) {
        pending_.clear();
    }
    return progress_.MayGoOn();
}

bool ForkLocator::Scan() {
    job_.frontEnd.ResetBar();
    try {
        while (position_ < file_.Size()) {
            if (!progress_.MayGoOn()) {
                return false;
            }
            if (!SkipToCandidate()) {
                continue;
            }
            bool mayGoOn = true;
            NalRun run =
                walker_.WalkNalRun(position_, [&] { return mayGoOn = progress_.MayGoOn(); });
            if (!mayGoOn) {
                return false;
            }
            if (run.UnitCount() <= NalWalker::kNoRun) {
                ++position_;
            } else {
                TakeRun(std::move(run));
            }
            PlaceWhatIsReady();
        }
    } catch (const std::bad_alloc&) {
        // As if the end of the file had been reached.
    }
    return true;
}

// The bytes from `position` on, with enough of them to judge more than one position, unless the
// file ends.
ByteView ForkLocator::BlockAt(std::uint64_t position) {
    const ByteView held = scanReader_.ViewOnward(position);
    if (held.size() > BlockTest::kLookAhead || position + held.size() >= file_.Size()) {
        return held;
    }
    static_cast<void>(scanReader_.View(position, platform::WindowReader::kSmallestWindow));
    return scanReader_.ViewOnward(position);
}

// Moves the position to the next one at which a unit could start. False when the block that is at
// hand holds none; the position then stands behind all that were judged.
bool ForkLocator::SkipToCandidate() {
    const ByteView block = BlockAt(position_);
    const bool isLast = position_ + block.size() >= file_.Size();
    const std::size_t judged = isLast ? block.size() : block.size() - BlockTest::kLookAhead;
    const std::size_t found = blockTest_.FindNext(block, 0, judged);
    const bool isFound = found != BlockTest::kNone;
    const std::uint64_t next = position_ + (isFound ? found : judged);
    ShowPercents(position_, isFound ? next : next - 1);
    position_ = next;
    return isFound;
}

// Shows what a scan that stops at each position from `from` to `to`, both included, would show.
void ForkLocator::ShowPercents(std::uint64_t from, std::uint64_t to) {
    const std::uint64_t size = file_.Size();
    for (std::uint64_t position = from; position <= to;) {
        const int percent = PercentOf(position, size);
        progress_.Show(percent);
        // The first position whose percent is a higher one.
        const std::uint64_t sought = static_cast<std::uint64_t>(percent) + 1;
        const std::uint64_t onward = size / 100 * sought + (size % 100 * sought + 99) / 100;
        position = std::max(position + 1, onward);
    }
}

void ForkLocator::TakeRun(NalRun run) {
    const std::uint64_t start = run.Records().samples.front().offset;
    if (videoEnd_) {
        TakeGap(*videoEnd_, start - *videoEnd_);
    } else {
        firstVideo_ = start;  // what lies ahead of the first run is no gap
    }
    videoEnd_ = run.End();
    position_ = run.End();
    const std::uint32_t sampleCount = run.SampleCount();
    Chunk chunk = run.TakeRecords();
    chunk.samples.shrink_to_fit();
    Place({Pending::Kind::Run, std::move(chunk), sampleCount});
}

void ForkLocator::TakeGap(std::uint64_t offset, std::uint64_t length) {
    if (SameTag(settings_.audioCoderFormat, kMp4aAudioCoderFormat)) {
        TakeAacGap(offset, length);
    } else if (SameTag(settings_.audioCoderFormat, kSowtAudioCoderFormat)) {
        order_.AddSowt(offset, length);
    } else if (SameTag(settings_.audioCoderFormat, kTwosAudioCoderFormat)) {
        order_.AddTwos(offset, length);
    }
}

// As long as no sound was found, each gap asks first whether there is any ahead of the first run.
// That question is the same each time, and so is its answer; it is asked at the first gap.
void ForkLocator::TakeAacGap(std::uint64_t offset, std::uint64_t length) {
    if (!probe_.CanStart()) {
        return;
    }
    if (!std::exchange(askedHead_, true) && firstVideo_ > 0) {
        pending_.push_back({Pending::Kind::AacHead, {}, 0});
        pool_.Submit(0, firstVideo_);
    }
    if (length > 0) {
        pending_.push_back({Pending::Kind::AacGap, {}, 0});
        pool_.Submit(offset, length);
    }
}

void ForkLocator::Place(Pending pending) {
    if (!pending_.empty()) {
        pending_.push_back(std::move(pending));
        return;
    }
    order_.AddVideo(std::move(pending.run), pending.sampleCount);
}

// Waits where the content is not known yet.
void ForkLocator::PlaceNext() {
    Pending next = std::move(pending_.front());
    pending_.pop_front();
    if (next.kind == Pending::Kind::Run) {
        order_.AddVideo(std::move(next.run), next.sampleCount);
        return;
    }
    if (pool_.Outstanding() == 0) {
        return;  // the question was never asked: memory ran out just then
    }
    if (next.kind == Pending::Kind::AacHead) {
        order_.AddAacHead(pool_.TakeNext());
    } else {
        order_.AddAac(pool_.TakeNext());
    }
}

void ForkLocator::PlaceWhatIsReady() {
    while (!pending_.empty() && (pending_.front().kind == Pending::Kind::Run ||
                                 pool_.IsNextReady() || pool_.Outstanding() >= kMostPending)) {
        PlaceNext();
    }
}

void ForkLocator::PlaceAll() {
    while (!pending_.empty()) {
        PlaceNext();
    }
}

std::uint64_t ForkLocator::BytesScanned() const {
    return std::min(position_, file_.Size());
}

platform::UnreadableRanges ForkLocator::Unreadable() const {
    platform::UnreadableRanges all = scanReader_.Unreadable();
    for (const auto* more : {&heads_.Unreadable(), &pool_.Unreadable()}) {
        for (const auto& range : more->List()) {
            all.Add(range.offset, range.length);
        }
    }
    return all;
}

}  // namespace clipfix
