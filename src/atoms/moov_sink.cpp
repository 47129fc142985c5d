#include "atoms/moov_sink.h"

#include <algorithm>

namespace clipfix {

Result<void> FileMoovSink::Append(ByteView bytes) {
    const auto end = file_.CurrentSize();
    if (!end) {
        return end.Failure();
    }
    flushFrom_ = std::min(flushFrom_, end.Value());
    return file_.WriteAt(end.Value(), bytes);
}

Result<void> FileMoovSink::Flush() {
    const auto end = file_.CurrentSize();
    if (!end) {
        return end.Failure();
    }
    if (flushFrom_ < end.Value()) {
        file_.BeginFlush(flushFrom_, end.Value() - flushFrom_);
        flushFrom_ = end.Value();
    }
    return {};
}

}  // namespace clipfix
