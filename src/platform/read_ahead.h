#pragma once

#include <condition_variable>
#include <cstdint>
#include <mutex>
#include <thread>

#include "base/bytes.h"
#include "platform/file.h"

namespace clipfix::platform {

// Reads the piece of a file that will be wanted next, on a thread of its own, while the piece
// before it is looked at. Positions and lengths are in bytes.
class ReadAhead {
  public:
    // `file` must outlive the object.
    explicit ReadAhead(const ReadableFile& file);
    ReadAhead(const ReadAhead&) = delete;
    ReadAhead& operator=(const ReadAhead&) = delete;
    // Waits for the read that is under way.
    ~ReadAhead();

    // Begins to read. What was begun before must have been taken.
    void Begin(std::uint64_t offset, std::size_t length);

    struct Piece {
        std::uint64_t start = 0;
        std::size_t length = 0;
        bool isWhole = false;  // or else it must be read again, with care
    };
    // Waits for the piece that was begun and swaps its bytes into `bytes`, whose own memory serves
    // for the next one. A piece of no length: nothing was begun.
    Piece Take(ByteVector& bytes);

  private:
    void Work();

    const ReadableFile& file_;
    std::mutex mutex_;
    std::condition_variable changed_;
    Piece piece_;
    ByteVector bytes_;
    bool isReading_ = false;
    bool isClosing_ = false;
    std::thread thread_;
};

}  // namespace clipfix::platform
