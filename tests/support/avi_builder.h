#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "base/bytes.h"

namespace clipfix::test {

// The pieces of an AVI file (RIFF, little-endian), byte by byte. Each function gives a finished
// piece; a damaged file is made by changing, leaving out or cutting what it gives.

// "LIST" or any other chunk: id, size, data, and a zero pad byte when the size is odd.
[[nodiscard]] ByteVector AviChunk(std::string_view id, ByteView data);
// A list: "LIST", size, type, and the pieces one after another.
[[nodiscard]] ByteVector AviList(std::string_view type, const std::vector<ByteVector>& pieces);
// "RIFF", size, type, and the pieces.
[[nodiscard]] ByteVector AviRiff(std::string_view type, const std::vector<ByteVector>& pieces);
// The pieces one after another, with nothing around them.
[[nodiscard]] ByteVector Join(const std::vector<ByteVector>& pieces);

// The 56 bytes of `avih`, in the order of the file.
struct AviMainHeader {
    std::uint32_t dwMicroSecPerFrame = 40000;
    std::uint32_t dwMaxBytesPerSec = 25000;
    std::uint32_t dwPaddingGranularity = 0;
    std::uint32_t dwFlags = 0x910;
    std::uint32_t dwTotalFrames = 7;
    std::uint32_t dwInitialFrames = 0;
    std::uint32_t dwStreams = 2;
    std::uint32_t dwSuggestedBufferSize = 65536;
    std::uint32_t dwWidth = 640;
    std::uint32_t dwHeight = 480;
    ByteVector dwReserved = ByteVector(16, 0);
};
[[nodiscard]] ByteVector AviMainHeaderBytes(const AviMainHeader& header);

// The 56 bytes of `strh`.
struct AviStreamHeader {
    std::string fccType = "vids";
    std::string fccHandler = "XVID";  // four bytes
    std::uint32_t dwFlags = 0;
    std::uint16_t wPriority = 0;
    std::uint16_t wLanguage = 0;
    std::uint32_t dwInitialFrames = 0;
    std::uint32_t dwScale = 1;
    std::uint32_t dwRate = 25;
    std::uint32_t dwStart = 0;
    std::uint32_t dwLength = 99;
    std::uint32_t dwSuggestedBufferSize = 4096;
    std::uint32_t dwQuality = 0xFFFFFFFF;
    std::uint32_t dwSampleSize = 0;
    std::uint64_t rcFrame = 0;
};
[[nodiscard]] ByteVector AviStreamHeaderBytes(const AviStreamHeader& header);

// The 40 bytes of a picture's `strf`.
struct AviPictureFormat {
    std::uint32_t biSize = 40;
    std::uint32_t biWidth = 640;
    std::uint32_t biHeight = 480;
    std::uint16_t biPlanes = 1;
    std::uint16_t biBitCount = 24;
    std::string biCompression = "XVID";  // four bytes
    std::uint32_t biSizeImage = 921600;
};
[[nodiscard]] ByteVector AviPictureFormatBytes(const AviPictureFormat& format);

// The 16 bytes of a sound's `strf`: 16-bit stereo.
[[nodiscard]] ByteVector AviSoundFormatBytes(std::uint16_t formatTag = 1,
                                             std::uint32_t samplesPerSecond = 44100);

// A whole `LIST strl` of `strh`, `strf` and whatever is to stand behind them.
[[nodiscard]] ByteVector AviStreamList(const AviStreamHeader& header, ByteView format,
                                       const std::vector<ByteVector>& more = {});
// The usual ones: a picture stream, and a sound stream of handler 0 with a 16-byte format.
[[nodiscard]] ByteVector AviVideoList();
[[nodiscard]] ByteVector AviAudioList();

// `LIST hdrl` with a size that covers `avih` and the stream lists.
[[nodiscard]] ByteVector AviHeaderList(const AviMainHeader& header,
                                       const std::vector<ByteVector>& streamLists);

// One data chunk: its four-letter id and its bytes.
struct AviDataChunk {
    std::string id = "00dc";
    ByteVector data;
};
// `size` bytes with no two letters of a marker in them; `seed` makes chunks tell apart.
[[nodiscard]] ByteVector AviFrame(std::size_t size, std::uint32_t seed = 1);
[[nodiscard]] AviDataChunk AviPicture(std::size_t size, std::uint32_t seed = 1);
[[nodiscard]] AviDataChunk AviSound(std::size_t size, std::uint32_t seed = 1);

// `LIST movi` with these chunks, and the `idx1` that belongs to it: flags 0x10, offsets from the
// word "movi".
[[nodiscard]] ByteVector AviMovieList(const std::vector<AviDataChunk>& chunks);
[[nodiscard]] ByteVector AviIndex(const std::vector<AviDataChunk>& chunks);

// A whole sound file of one picture and one sound stream.
struct AviFile {
    AviMainHeader mainHeader;
    std::vector<ByteVector> streamLists = {AviVideoList(), AviAudioList()};
    std::vector<ByteVector> beforeMovie;  // between `hdrl` and `movi`: `LIST INFO`, `JUNK`
    std::vector<AviDataChunk> chunks;
    bool withIndex = true;
    std::vector<ByteVector> behind;  // behind the index

    [[nodiscard]] ByteVector Bytes() const;
};

// `count` pictures with a sound behind each second one; sizes grow from `size`, odd ones among
// them.
[[nodiscard]] std::vector<AviDataChunk> AviChunks(std::size_t count, std::size_t size = 100);

// Position of the first place at or behind `from` where the letters stand; the size of `bytes`
// when there is none.
[[nodiscard]] std::size_t FindText(ByteView bytes, std::string_view letters, std::size_t from = 0);

// Overwrites bytes in place; what would fall outside is an error of the test and ends it.
void Overwrite(ByteVector& bytes, std::size_t at, ByteView with);
void OverwriteText(ByteVector& bytes, std::size_t at, std::string_view letters);
void OverwriteLittle32(ByteVector& bytes, std::size_t at, std::uint32_t value);
void Erase(ByteVector& bytes, std::size_t at, std::size_t length);
void Insert(ByteVector& bytes, std::size_t at, ByteView more);

}  // namespace clipfix::test
