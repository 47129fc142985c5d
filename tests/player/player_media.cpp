#include "player/player_media.h"

#include <algorithm>
#include <cstdlib>
#include <iostream>
#include <string>
#include <string_view>

#include "support/byte_builder.h"
#include "support/media_tools.h"

namespace clipfix::test {

namespace {

struct Place {
    std::size_t offset = 0;
    std::size_t header = 0;
    std::size_t size = 0;
};

Place Find(ByteView movie, std::string_view code) {
    std::size_t at = 0;
    while (movie.size() - at >= 8) {
        const bool isLong = ReadBig32(movie, at) == 1;
        const auto size =
            static_cast<std::size_t>(isLong ? ReadBig64(movie, at + 8) : ReadBig32(movie, at));
        if (MatchesAt(movie, at + 4, code)) {
            return {at, isLong ? std::size_t{16} : std::size_t{8}, size};
        }
        at += size;
    }
    std::cerr << "the film has no " << code << '\n';
    std::exit(1);
}

std::string Sources(const std::string& size, int seconds) {
    const std::string length = std::to_string(seconds);
    return "-f lavfi -i testsrc2=s=" + size + ":r=25:d=" + length +
           " -f lavfi -i anullsrc=r=44100:cl=mono -t " + length + " -shortest ";
}

}  // namespace

void MakeH264Movie(const std::filesystem::path& path, int seconds) {
    MakeMedia(path, Sources("320x180", seconds) +
                        "-c:v libx264 -preset ultrafast -pix_fmt yuv420p -g 25 -c:a aac");
}

void MakeH265Movie(const std::filesystem::path& path, int seconds) {
    MakeMedia(path, Sources("320x180", seconds) +
                        "-c:v libx265 -preset ultrafast -x265-params log-level=none -tag:v hvc1 "
                        "-pix_fmt yuv420p -c:a aac");
}

void MakeAvi(const std::filesystem::path& path, int seconds) {
    MakeMedia(path, Sources("320x180", seconds) + "-c:v mpeg4 -c:a pcm_s16le");
}

void MakeSoundOnly(const std::filesystem::path& path, int seconds) {
    MakeMedia(path,
              "-f lavfi -i anullsrc=r=44100:cl=mono -t " + std::to_string(seconds) + " -c:a aac");
}

ByteVector WithMediaDataFirst(ByteView movie) {
    const Place mdat = Find(movie, "mdat");
    const Place moov = Find(movie, "moov");
    const ByteView media = movie.subspan(mdat.offset + mdat.header, mdat.size - mdat.header);
    ByteBuilder head;
    head.Big32(1).Text("mdat").Big64(16 + media.size());
    ByteVector tables(movie.begin() + static_cast<std::ptrdiff_t>(moov.offset),
                      movie.begin() + static_cast<std::ptrdiff_t>(moov.offset + moov.size));
    const std::size_t moved = mdat.offset + mdat.header - 16;
    for (std::size_t at = 0; at + 12 < tables.size(); ++at) {
        if (!MatchesAt(tables, at, "stco")) {
            continue;
        }
        const std::uint32_t count = ReadBig32(tables, at + 8);
        for (std::size_t i = 0; i < count; ++i) {
            const std::size_t entry = at + 12 + 4 * i;
            StoreBig32(tables, entry, static_cast<std::uint32_t>(ReadBig32(tables, entry) - moved));
        }
    }
    return head.Bytes(media).Bytes(tables).Take();
}

ByteVector WithoutMediaData(ByteView movie) {
    const Place mdat = Find(movie, "mdat");
    ByteVector copy(movie.begin(), movie.end());
    const auto start = copy.begin() + static_cast<std::ptrdiff_t>(mdat.offset + mdat.header);
    std::fill(start, start + static_cast<std::ptrdiff_t>(mdat.size - mdat.header), std::uint8_t{0});
    return copy;
}

}  // namespace clipfix::test
