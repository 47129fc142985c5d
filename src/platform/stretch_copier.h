#pragma once

#include <atomic>
#include <condition_variable>
#include <cstdint>
#include <mutex>
#include <optional>
#include <thread>

#include "base/bytes.h"
#include "base/result.h"
#include "platform/file.h"

namespace clipfix::platform {

// Copies long stretches of one file to another. What is in the target is the same whichever way is
// taken. Positions are in bytes.
class StretchCopier {
  public:
    enum class Way {
        WithinSystem,   // the system copies, perhaps by sharing blocks or on a server
        ThroughMemory,  // two threads copy, each with a buffer of its own
    };

    // The faster way: within the system, unless it copies page by page in there as well. Two
    // threads outdo that by far where the positions do not lie alike in their pages, which is
    // nearly always.
    static Way BestWay(const File& source, const File& target);

    // Both files must outlive the copier.
    StretchCopier(const File& source, File& target, Way way);
    StretchCopier(const StretchCopier&) = delete;
    StretchCopier& operator=(const StretchCopier&) = delete;
    ~StretchCopier();

    // Copies up to `length` bytes from `from` to `to`, and tells how many of them, from the first
    // one on, are in the target for sure. They are fewer than asked where the source cannot be read
    // or the system does not offer the copy: the caller then has to see to the rest, of which some
    // may stand in the target already. Fails where the target cannot be written.
    Result<std::uint64_t> Copy(std::uint64_t from, std::uint64_t to, std::uint64_t length);

  private:
    struct Stretch {
        std::uint64_t from = 0;
        std::uint64_t to = 0;
        std::uint64_t length = 0;
    };

    void CallPartner();
    void WaitForPartner();
    void WorkAsPartner();
    void CopyBlocks(ByteVector& buffer);
    void EndAt(std::uint64_t position, std::optional<Error> failure);

    const File& source_;
    File& target_;
    const Way way_;
    ByteVector buffer_;
    ByteVector partnerBuffer_;

    std::mutex mutex_;
    std::condition_variable changed_;
    Stretch stretch_;                     // written only while the partner rests
    std::atomic<std::uint64_t> next_{0};  // of the stretch: where the next block begins
    std::uint64_t arrived_ = 0;           // of the stretch: what comes before is or will be copied
    std::optional<Error> failure_;
    bool partnerIsCalled_ = false;
    bool isClosing_ = false;
    std::thread partner_;
};

}  // namespace clipfix::platform
