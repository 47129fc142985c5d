#include "atoms/moov_sink.h"

namespace clipfix {

Result<void> FileMoovSink::Append(ByteView bytes) {
    const auto end = file_.CurrentSize();
    if (!end) {
        return end.Failure();
    }
    return file_.WriteAt(end.Value(), bytes);
}

Result<void> FileMoovSink::Flush() {
    return file_.Flush();
}

}  // namespace clipfix
