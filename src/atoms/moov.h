#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string_view>
#include <vector>

#include "atoms/creation_request.h"
#include "atoms/header_atoms.h"
#include "atoms/moov_sink.h"
#include "atoms/movie_read.h"
#include "atoms/sample_descriptions.h"
#include "atoms/trak.h"
#include "base/bytes.h"
#include "base/result.h"

namespace clipfix {

// The movie tree (ISO/IEC 14496-12, 8.2.1; QuickTime File Format, "The Movie Atom").
//
// A tree is read from the `moov` of a healthy reference, asked for what the engine needs to know,
// and made into a second tree that describes the repaired movie. Nothing in a tree reads a file:
// every atom is made from memory, and every atom of a repaired tree holds its bytes before
// anything is written.
//
// Children are found by sliding byte by byte until the code of a known child shows up under a size
// that fits; what is unknown is stepped through in the same way. Bad input is never reported. It
// shows as absent children, and finally as an empty list of tracks.
//
// Both trees hold some objects together (`mvhd`, `tkhd`, `stsd`, in some cases `stsc` and `ctts`);
// a change made for the repaired tree shows in the reference tree. Either may be destroyed first.
// A tree is used by one thread at a time, and so are two trees that share.
class CMoov {
  public:
    CMoov() = default;

    // Reads a tree. `block` is the whole atom from its size field on, and is not needed
    // afterwards; `read` takes what the read leaves behind besides the tree.
    CMoov(ByteView block, MovieRead& read);

    std::uint32_t size = 0;  // bytes: the block's, or the sum worked out for a rebuilt tree
    std::uint32_t type = 0;
    std::shared_ptr<CMvhd> mvhd;                 // null when absent
    std::vector<std::unique_ptr<CTrak>> tracks;  // in file order; all have a `mdia`

    // The tree of the repaired movie. Every video and sound track is made anew from the request of
    // its kind; all other tracks are dropped. Null when this tree has no tracks, or when the
    // result would not fit in 32 bits. It changes the shared headers of this tree, so it is to be
    // called once.
    [[nodiscard]] std::unique_ptr<CMoov> CreateMoov(const CAtomCreationRequest& videoRequest,
                                                    const CAtomCreationRequest& audioRequest);

    // Writes the tree behind what `sink` holds: size, type, the movie header made anew, each
    // track. A piece that cannot be written is passed over and the others still follow; the result
    // then tells the first failure. Closing the file is up to its owner.
    Result<void> WriteMoov(MoovSink& sink);

    // What WriteMoov's caller appends to the arguments of the preview player: "$$1" for H.265
    // video or AAC sound, else "$$0".
    [[nodiscard]] static std::string_view PlayerArgsSuffix(std::string_view videoCoderFormat,
                                                           std::string_view audioCoderFormat);

    // The first track of a kind ("VIDEO_TRACK", "AUDIO_TRACK", "UNKNOWN_TRACK"), or null.
    [[nodiscard]] const CTrak* GetTrack(std::string_view trackType) const;

    // Of the first track of the kind; 0 when there is none. Samples in one second; ticks in one
    // second.
    [[nodiscard]] double GetVideoSampleRate() const;
    [[nodiscard]] double GetAudioSampleRate() const;
    [[nodiscard]] std::uint32_t GetVideoTimescale() const;
    [[nodiscard]] std::uint32_t GetAudioTimescale() const;

    // The parameter sets of the first video track, if its coder is `avc1` or `hvc1`; else none.
    [[nodiscard]] AnySps GetSPS() const;
    [[nodiscard]] AnyPps GetPPS() const;
    [[nodiscard]] std::shared_ptr<const CVPS> GetVPS() const;

    // What starts the AAC decoder of the first sound track, if its coder is `mp4a`.
    [[nodiscard]] std::optional<DecoderSpecifiInfoWrapper> GetAudioSpecificInfo() const;

    template <typename Self, typename Visitor>
    static constexpr void Fields(Self& self, Visitor& visit) {
        visit(self.size, self.type);
    }

  private:
    void Parse(const AtomBlock& block, MovieRead& read);
    std::size_t AddRebuilt(const CTrak& reference, const CAtomCreationRequest& request,
                           double sampleRate, bool setsMovieDuration);
    [[nodiscard]] const CStsd* VideoDescription() const;
};

}  // namespace clipfix
