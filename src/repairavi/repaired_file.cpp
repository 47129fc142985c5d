#include "repairavi/repaired_file.h"

namespace clipfix {

RepairedFile::RepairedFile(JobState& state, std::optional<platform::File>& file,
                           const platform::File* damaged, platform::WindowReader& reader)
    : state_(&state), file_(&file), damaged_(damaged), reader_(&reader) {
    MoveEnd(0);
}

void RepairedFile::Append(ByteView bytes) {
    if (copier_) {
        Note(copier_->Append(bytes));
    }
}

void RepairedFile::AppendZeros(std::uint64_t count) {
    // A hole: the file's end is set behind it when the repair is finished.
    if (copier_ && count > 0) {
        MoveEnd(copier_->End() + count);
    }
}

void RepairedFile::CopyFromDamaged(std::uint64_t offset, std::uint64_t length) {
    if (copier_ && length > 0) {
        Note(copier_->CopyRange(offset, length));
    }
}

void RepairedFile::Patch(std::uint64_t at, ByteView bytes) {
    if (!copier_) {
        return;
    }
    Finish();
    Note((*file_)->WriteAt(at, bytes));
    const std::uint64_t end = at + bytes.size();
    if (end > copier_->End()) {
        MoveEnd(end);
    }
}

ByteVector RepairedFile::FirstBytes(std::size_t count) {
    ByteVector bytes(count);
    Finish();
    const Result<std::size_t> got = *file_ ? (*file_)->ReadAt(0, bytes) : Result<std::size_t>(0);
    bytes.resize(got ? got.Value() : 0);
    return bytes;
}

void RepairedFile::MoveEnd(std::uint64_t position) {
    if (*file_) {
        Finish();
        copier_.emplace(damaged_, *reader_, **file_, position);
    }
}

void RepairedFile::SetEnd(std::uint64_t size) {
    if (copier_) {
        Finish();
        Note((*file_)->SetEnd(size));
    }
}

void RepairedFile::Finish() {
    if (copier_) {
        Note(copier_->Finish());
    }
}

void RepairedFile::Note(const Result<void>& done) {
    if (!done && state_->writeFailed == 0) {
        state_->writeFailure = done.Failure().text;
        state_->writeFailed = 1;
    }
}

}  // namespace clipfix
