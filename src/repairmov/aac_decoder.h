#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string_view>

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

    // What the library says to one question.
    struct Answer {
        bool hasResult = false;
        std::uint64_t bytesConsumed = 0;
        std::uint8_t error = 0;   // the library's number; 0 for none
        bool isReplaced = false;  // another decoder took the place of this one, and answered

        // A frame is a decode that gave something and consumed something, whatever number of
        // samples came of it. 0 when there is none.
        [[nodiscard]] std::uint64_t FrameBytes() const { return hasResult ? bytesConsumed : 0; }
    };
    // The library's error "Unexpected channel configuration change".
    static constexpr std::uint8_t kElementsChanged = 21;

    // The library's own name for its version.
    [[nodiscard]] static std::string_view LibraryVersion();

    // Decodes at the first of `bytes`, of which `length` are shown; those that are missing are
    // zero.
    [[nodiscard]] Answer Decode(ByteView bytes, std::size_t length);
    // The same on bytes where they stand: the library sees nothing but them. It may write to them.
    [[nodiscard]] Answer DecodeInPlace(ByteSpan bytes);

  private:
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
