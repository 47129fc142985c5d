#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <span>

#include "base/bytes.h"

namespace clipfix {

// One AAC decoder of the decoding library, asked for nothing but how many bytes a frame takes. Its
// answers depend on all that it was shown before.
class AacDecoder {
  public:
    // The most that Decode is shown, in bytes.
    static constexpr std::size_t kMostBytes = 1024;
    // The decoder-specific bytes that are handed over. Always two. Settled.
    static constexpr std::size_t kStartBytes = 2;

    // Null when the library does not take the bytes.
    static std::unique_ptr<AacDecoder> Start(std::span<const std::uint8_t, kStartBytes> bytes);

    AacDecoder(const AacDecoder&) = delete;
    AacDecoder& operator=(const AacDecoder&) = delete;
    ~AacDecoder();

    // Decodes at the first of `bytes`, of which `length` are shown; those that are missing are
    // zero. Gives the number of bytes of the frame that stands there; 0 when there is none.
    [[nodiscard]] std::uint64_t Decode(ByteView bytes, std::size_t length);
    // The same on bytes where they stand: the library sees nothing but them. It may write to them.
    [[nodiscard]] std::uint64_t DecodeInPlace(ByteSpan bytes);

  private:
    struct Answer;
    // The part of a decoder's configuration that goes over to one that takes its place.
    struct StartedWith {
        unsigned long sampleRate = 0;
        std::uint8_t objectType = 0;
        std::uint8_t outputFormat = 0;
        friend bool operator==(const StartedWith&, const StartedWith&) = default;
    };

    AacDecoder() = default;
    [[nodiscard]] Answer Ask(ByteSpan bytes);
    [[nodiscard]] bool Recover();
    [[nodiscard]] static void* StartAnother(const StartedWith& wanted);

    // The library works on memory that it may write to. What stands behind the bytes it is shown
    // is zero, so that its answer never hangs on what was there before.
    static constexpr std::size_t kSlack = 64;

    void* handle_ = nullptr;
    std::optional<StartedWith> failedStart_;
    std::uint8_t shown_[kMostBytes + kSlack] = {};
};

}  // namespace clipfix
