#include "platform/window_reader.h"

#include <algorithm>
#include <cassert>
#include <utility>

namespace clipfix::platform {

ByteView WindowReader::View(std::uint64_t offset, std::size_t length) {
    assert(length <= kLargestWindow);
    if (offset >= Size()) {
        return {};
    }
    const auto inside = static_cast<std::size_t>(std::min<std::uint64_t>(length, Size() - offset));
    return SubView(Provide(offset, inside).From(offset), 0, inside);
}

ByteView WindowReader::ViewOnward(std::uint64_t offset) {
    return offset >= Size() ? ByteView() : Provide(offset, 1).From(offset);
}

std::size_t WindowReader::Read(std::uint64_t offset, ByteSpan out) {
    const std::size_t inside =
        offset >= Size()
            ? 0
            : static_cast<std::size_t>(std::min<std::uint64_t>(out.size(), Size() - offset));
    ReadPiece(offset, out.first(inside));
    std::fill(out.begin() + static_cast<std::ptrdiff_t>(inside), out.end(), std::uint8_t{0});
    return inside;
}

bool WindowReader::Window::Holds(std::uint64_t offset, std::size_t length) const {
    return offset >= start && offset - start <= bytes.size() &&
           length <= bytes.size() - static_cast<std::size_t>(offset - start);
}

const WindowReader::Window& WindowReader::Provide(std::uint64_t offset, std::size_t length) {
    if (!current_.Holds(offset, length)) {
        std::swap(current_, earlier_);
        if (!current_.Holds(offset, length)) {
            Load(offset, length);
        }
    }
    return current_;
}

// Fills the current window anew; the one that was current until now has become the earlier one.
void WindowReader::Load(std::uint64_t offset, std::size_t length) {
    // A read that goes on near where a window ends is part of a scan; anything else is a jump.
    const std::uint64_t end = earlier_.start + earlier_.bytes.size();
    const bool goesOn =
        !earlier_.bytes.empty() && offset >= earlier_.start && offset <= end + kSmallestWindow;
    windowSize_ = goesOn ? std::min(windowSize_ * 2, kLargestWindow) : kSmallestWindow;
    if (!goesOn) {
        readAhead_.reset();
    } else if (TakeWhatWasReadAhead(offset, length)) {
        BeginReadAhead();
        return;
    }
    const std::uint64_t wanted = std::max(windowSize_, length);
    current_.bytes.resize(static_cast<std::size_t>(std::min(wanted, Size() - offset)));
    current_.start = offset;
    ReadPiece(offset, current_.bytes);
    if (windowSize_ == kLargestWindow) {
        BeginReadAhead();
    }
}

// Makes the piece that was read ahead the current window, if it is of use.
bool WindowReader::TakeWhatWasReadAhead(std::uint64_t offset, std::size_t length) {
    if (readAhead_ == nullptr) {
        return false;
    }
    const ReadAhead::Piece piece = readAhead_->Take(current_.bytes);
    current_.bytes.resize(piece.length);
    current_.start = piece.start;
    if (!current_.Holds(offset, length)) {
        return false;
    }
    if (!piece.isWhole) {
        ReadPiece(current_.start, current_.bytes);
    }
    return true;
}

// The next window begins a little ahead of where the current one ends: who looks for a pattern
// has not yet judged the last bytes.
void WindowReader::BeginReadAhead() {
    const std::uint64_t end = current_.start + current_.bytes.size();
    if (end >= Size() || !unreadable_.IsEmpty()) {
        return;  // a dying medium is asked for nothing that may not be needed
    }
    if (readAhead_ == nullptr) {
        readAhead_ = std::make_unique<ReadAhead>(*file_);
    }
    const std::uint64_t start = end - kSmallestWindow;
    readAhead_->Begin(
        start, static_cast<std::size_t>(std::min<std::uint64_t>(kLargestWindow, Size() - start)));
}

// Reads `out` whole, all of it inside the file. Where that fails it is halved, down to sectors;
// a sector that fails reads as zero.
void WindowReader::ReadPiece(std::uint64_t offset, ByteSpan out) {
    if (out.empty()) {
        return;
    }
    if (const auto got = file_->ReadAt(offset, out)) {
        // The file has become shorter since it was opened: what is gone reads as zero.
        std::fill(out.begin() + static_cast<std::ptrdiff_t>(got.Value()), out.end(),
                  std::uint8_t{0});
        return;
    }
    const std::uint64_t sectorEnd = (offset / kSector + 1) * kSector;
    if (out.size() <= sectorEnd - offset) {
        std::fill(out.begin(), out.end(), std::uint8_t{0});
        unreadable_.Add(offset, out.size());
        return;
    }
    // Halve at a sector's edge, so that the two halves share no sector.
    const std::uint64_t middle = (offset + out.size() / 2) / kSector * kSector;
    const auto first = static_cast<std::size_t>(std::max(middle, sectorEnd) - offset);
    ReadPiece(offset, out.first(first));
    ReadPiece(offset + first, out.subspan(first));
}

}  // namespace clipfix::platform
