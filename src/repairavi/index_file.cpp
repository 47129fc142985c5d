#include "repairavi/index_file.h"

namespace clipfix {

namespace {

constexpr std::size_t kRecordSize = 16;
// AVIIF_KEYFRAME, for sound and for pictures that rest on others too: meant so.
constexpr std::uint32_t kRecordFlags = 0x10;
constexpr std::uint64_t kSizeAt = 4;

}  // namespace

IndexFile::IndexFile(std::optional<platform::File>& file, RepairedFile& repaired)
    : file_(&file), repaired_(&repaired) {
    idxBuffer_.reserve(kGatheredBytes);
    AppendBytes(idxBuffer_, idx1_AVI);
    AppendLittle32(idxBuffer_, 0);
}

void IndexFile::AddRecord(const FourLetters& id, std::uint32_t offset, std::uint32_t size) {
    if (idxBuffer_.size() + kRecordSize > kGatheredBytes) {
        Flush();
    }
    AppendBytes(idxBuffer_, id);
    AppendLittle32(idxBuffer_, kRecordFlags);
    AppendLittle32(idxBuffer_, offset);
    AppendLittle32(idxBuffer_, size);
}

void IndexFile::Finish(std::uint32_t bodySize) {
    Flush();
    ByteVector bFileSize;
    AppendLittle32(bFileSize, bodySize);
    if (*file_) {
        repaired_->Note((*file_)->WriteAt(kSizeAt, bFileSize));
    }
}

std::size_t IndexFile::ReadAt(std::uint64_t at, ByteSpan out) const {
    if (!*file_) {
        return 0;
    }
    const auto got = (*file_)->ReadAt(at, out);
    return got ? got.Value() : 0;
}

void IndexFile::Flush() {
    if (*file_) {
        repaired_->Note((*file_)->WriteAt(written_, idxBuffer_));
    }
    written_ += idxBuffer_.size();
    idxBuffer_.clear();
}

}  // namespace clipfix
