#include "repairavi/scan_buffer.h"

#include <algorithm>

namespace clipfix {

void ScanBuffer::Refill(std::uint64_t fileOffset) {
    const std::uint64_t fileSize = reader_->Size();
    const std::uint64_t rest = fileOffset < fileSize ? fileSize - fileOffset : 0;
    origin_ = fileOffset;
    bytesRead_ = static_cast<std::uint32_t>(std::min<std::uint64_t>(rest, kSize));
    filePointer_ = origin_ + bytesRead_;
    repairs_.clear();
    if (prefetch_ != nullptr) {
        prefetch_->GoOnFrom(origin_);
    }
}

void ScanBuffer::Fetch(std::int64_t index, ByteSpan out) {
    std::fill(out.begin(), out.end(), std::uint8_t{0});
    const std::int64_t start = std::max<std::int64_t>(index, 0);
    const std::int64_t end =
        std::min(index + static_cast<std::int64_t>(out.size()), std::int64_t{bytesRead_});
    if (start < end) {
        const ByteView view = reader_->View(origin_ + static_cast<std::uint64_t>(start),
                                            static_cast<std::size_t>(end - start));
        std::copy(view.begin(), view.end(), out.begin() + (start - index));
    }
    for (auto repair = repairs_.lower_bound(static_cast<std::uint32_t>(start));
         repair != repairs_.end() && repair->first < index + static_cast<std::int64_t>(out.size());
         ++repair) {
        out[static_cast<std::size_t>(repair->first - index)] = repair->second;
    }
}

ByteVector ScanBuffer::AllBytes() {
    ByteVector bytes(kSize);
    constexpr std::uint32_t kPiece = 65536;
    for (std::uint32_t at = 0; at < kSize; at += kPiece) {
        Fetch(at, ByteSpan(bytes).subspan(at, std::min(kPiece, kSize - at)));
    }
    return bytes;
}

void ScanBuffer::Store(std::int64_t index, ByteView bytes) {
    for (const std::uint8_t byte : bytes) {
        if (Holds(index, 1) && Byte(index) != byte) {
            repairs_[static_cast<std::uint32_t>(index)] = byte;
            ++changes_;
        }
        ++index;
    }
}

void ScanBuffer::StoreLittle32(std::int64_t index, std::uint32_t value) {
    std::array<std::uint8_t, 4> bytes{};
    clipfix::StoreLittle32(bytes, 0, value);
    Store(index, bytes);
}

void ScanBuffer::StoreLittle16(std::int64_t index, std::uint16_t value) {
    std::array<std::uint8_t, 2> bytes{};
    clipfix::StoreLittle16(bytes, 0, value);
    Store(index, bytes);
}

Marker ScanBuffer::MarkerAt(std::int64_t index) {
    return RecogniseMarker(Bytes<4>(index));
}

std::uint32_t ScanBuffer::FindMarker(std::uint32_t from, std::uint32_t until, MarkerStops stops) {
    // Over the repairs, byte by byte: they end where the header block ends.
    const std::uint32_t repairsEnd = repairs_.empty() ? 0 : repairs_.rbegin()->first + 1;
    for (; from < until && from < repairsEnd; ++from) {
        if (stops.Has(MarkerAt(from))) {
            return from;
        }
    }
    constexpr std::uint32_t kMarkerSize = 4;
    while (from < until && from < bytesRead_) {
        // Four bytes, and then all that the window happens to hold behind them.
        const std::uint32_t inBuffer = bytesRead_ - from;
        const std::uint64_t at = origin_ + from;
        static_cast<void>(reader_->View(at, std::min(inBuffer, kMarkerSize)));
        const ByteView window = SubView(reader_->ViewOnward(at), 0, inBuffer);
        const ByteView wanted = SubView(window, 0, until - from + kMarkerSize - 1);
        const auto found = static_cast<std::uint32_t>(clipfix::FindMarker(wanted, stops));
        if (found < wanted.size()) {
            return std::min(from + found, until);
        }
        if (wanted.size() < window.size() || window.size() == inBuffer) {
            return until;
        }
        from += found - (kMarkerSize - 1);
    }
    return until;
}

void ScanBuffer::AppendTo(RepairedFile& repaired, std::int64_t index, std::uint64_t length) {
    if (index < 0) {
        const std::uint64_t outside = std::min(length, static_cast<std::uint64_t>(-index));
        repaired.AppendZeros(outside);
        index += static_cast<std::int64_t>(outside);
        length -= outside;
    }
    const std::uint64_t inside = index < std::int64_t{kSize}
                                     ? std::min(length, static_cast<std::uint64_t>(kSize - index))
                                     : 0;
    AppendInside(repaired, static_cast<std::uint32_t>(index), static_cast<std::uint32_t>(inside));
    repaired.AppendZeros(length - inside);
}

void ScanBuffer::AppendInside(RepairedFile& repaired, std::uint32_t index, std::uint32_t length) {
    const std::uint32_t end = index + length;
    // Where repairs lie over the file's bytes, the stretch between them goes as bytes of ours.
    for (auto repair = repairs_.lower_bound(index); repair != repairs_.end() && repair->first < end;
         ++repair) {
        repaired.CopyFromDamaged(origin_ + index, repair->first - index);
        repaired.Append(std::array{repair->second});
        index = repair->first + 1;
    }
    repaired.CopyFromDamaged(origin_ + index, end - index);
}

}  // namespace clipfix
