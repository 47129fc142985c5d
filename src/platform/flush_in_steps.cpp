#include "platform/flush_in_steps.h"

#include <algorithm>

namespace clipfix::platform {

namespace {

// Bytes between two looks at the progress routine.
constexpr std::uint64_t kBetweenLooks = std::uint64_t{4} << 20U;
// What is begun ahead of the step that is waited for, so that a fast medium does not wait for us.
constexpr std::uint64_t kBegunAhead = std::uint64_t{32} << 20U;

}  // namespace

Result<void> FlushInSteps(File& file, const TransferProgress& progress) {
    const auto size = file.CurrentSize();
    if (!size) {
        return size.Failure();
    }
    const std::uint64_t total = size.Value();
    std::uint64_t begun = 0;
    std::uint64_t done = 0;
    while (progress(done, total)) {
        if (done == total) {
            return file.Flush();
        }
        const std::uint64_t step = std::min(kBetweenLooks, total - done);
        const std::uint64_t wanted = std::min(total, done + kBegunAhead);
        file.BeginFlush(begun, wanted - begun);
        begun = wanted;
        if (auto flushed = file.FlushStretch(done, step); !flushed) {
            return flushed;
        }
        done += step;
    }
    return Error{ErrorKind::Cancelled, "cancelled on the way to the medium", done};
}

}  // namespace clipfix::platform
