#include "support/avi_builder.h"

#include <algorithm>
#include <cstdlib>
#include <iostream>

#include "support/byte_builder.h"

namespace clipfix::test {

namespace {

void Need(bool holds, const char* what) {
    if (!holds) {
        std::cerr << "avi builder: " << what << '\n';
        std::abort();
    }
}

// A chunk's head and its pieces; the pad byte stands outside the size.
ByteVector Form(std::string_view id, std::string_view type, const std::vector<ByteVector>& pieces) {
    Need(id.size() == 4 && type.size() == 4, "an id has four letters");
    const ByteVector body = Join(pieces);
    ByteBuilder form;
    form.Text(id).Little32(static_cast<std::uint32_t>(body.size() + 4)).Text(type).Bytes(body);
    return form.Zeros(form.Size() % 2).Take();
}

}  // namespace

ByteVector AviChunk(std::string_view id, ByteView data) {
    Need(id.size() == 4, "an id has four letters");
    return ByteBuilder()
        .Text(id)
        .Little32(static_cast<std::uint32_t>(data.size()))
        .Bytes(data)
        .Zeros(data.size() % 2)
        .Take();
}

ByteVector AviList(std::string_view type, const std::vector<ByteVector>& pieces) {
    return Form("LIST", type, pieces);
}

ByteVector AviRiff(std::string_view type, const std::vector<ByteVector>& pieces) {
    return Form("RIFF", type, pieces);
}

ByteVector Join(const std::vector<ByteVector>& pieces) {
    ByteVector bytes;
    for (const auto& piece : pieces) {
        AppendBytes(bytes, piece);
    }
    return bytes;
}

ByteVector AviMainHeaderBytes(const AviMainHeader& header) {
    Need(header.dwReserved.size() == 16, "avih ends with 16 reserved bytes");
    return ByteBuilder()
        .Little32(header.dwMicroSecPerFrame)
        .Little32(header.dwMaxBytesPerSec)
        .Little32(header.dwPaddingGranularity)
        .Little32(header.dwFlags)
        .Little32(header.dwTotalFrames)
        .Little32(header.dwInitialFrames)
        .Little32(header.dwStreams)
        .Little32(header.dwSuggestedBufferSize)
        .Little32(header.dwWidth)
        .Little32(header.dwHeight)
        .Bytes(header.dwReserved)
        .Take();
}

ByteVector AviStreamHeaderBytes(const AviStreamHeader& header) {
    Need(header.fccType.size() == 4 && header.fccHandler.size() == 4, "a code has four letters");
    return ByteBuilder()
        .Text(header.fccType)
        .Text(header.fccHandler)
        .Little32(header.dwFlags)
        .Little16(header.wPriority)
        .Little16(header.wLanguage)
        .Little32(header.dwInitialFrames)
        .Little32(header.dwScale)
        .Little32(header.dwRate)
        .Little32(header.dwStart)
        .Little32(header.dwLength)
        .Little32(header.dwSuggestedBufferSize)
        .Little32(header.dwQuality)
        .Little32(header.dwSampleSize)
        .Little32(static_cast<std::uint32_t>(header.rcFrame))
        .Little32(static_cast<std::uint32_t>(header.rcFrame >> 32U))
        .Take();
}

ByteVector AviPictureFormatBytes(const AviPictureFormat& format) {
    Need(format.biCompression.size() == 4, "a code has four letters");
    return ByteBuilder()
        .Little32(format.biSize)
        .Little32(format.biWidth)
        .Little32(format.biHeight)
        .Little16(format.biPlanes)
        .Little16(format.biBitCount)
        .Text(format.biCompression)
        .Little32(format.biSizeImage)
        .Zeros(16)
        .Take();
}

ByteVector AviSoundFormatBytes(std::uint16_t formatTag, std::uint32_t samplesPerSecond) {
    return ByteBuilder()
        .Little16(formatTag)
        .Little16(2)
        .Little32(samplesPerSecond)
        .Little32(samplesPerSecond * 4)
        .Little16(4)
        .Little16(16)
        .Take();
}

ByteVector AviStreamList(const AviStreamHeader& header, ByteView format,
                         const std::vector<ByteVector>& more) {
    std::vector<ByteVector> pieces = {AviChunk("strh", AviStreamHeaderBytes(header)),
                                      AviChunk("strf", format)};
    pieces.insert(pieces.end(), more.begin(), more.end());
    return AviList("strl", pieces);
}

ByteVector AviVideoList() {
    return AviStreamList({}, AviPictureFormatBytes({}));
}

ByteVector AviAudioList() {
    AviStreamHeader header;
    header.fccType = "auds";
    header.fccHandler = std::string(4, '\0');
    header.dwScale = 4;
    header.dwRate = 176400;
    header.dwSampleSize = 4;
    return AviStreamList(header, AviSoundFormatBytes());
}

ByteVector AviHeaderList(const AviMainHeader& header, const std::vector<ByteVector>& streamLists) {
    std::vector<ByteVector> pieces = {AviChunk("avih", AviMainHeaderBytes(header))};
    pieces.insert(pieces.end(), streamLists.begin(), streamLists.end());
    return AviList("hdrl", pieces);
}

ByteVector AviFrame(std::size_t size, std::uint32_t seed) {
    ByteVector bytes(size);
    std::uint32_t value = seed * 2654435761U + 12345U;
    for (auto& byte : bytes) {
        value = value * 1664525U + 1013904223U;
        byte = static_cast<std::uint8_t>(0x80U | (value >> 24U));  // never a letter or a digit
    }
    return bytes;
}

AviDataChunk AviPicture(std::size_t size, std::uint32_t seed) {
    return {"00dc", AviFrame(size, seed)};
}

AviDataChunk AviSound(std::size_t size, std::uint32_t seed) {
    return {"01wb", AviFrame(size, seed + 1000)};
}

ByteVector AviMovieList(const std::vector<AviDataChunk>& chunks) {
    std::vector<ByteVector> pieces;
    pieces.reserve(chunks.size());
    for (const auto& chunk : chunks) {
        pieces.push_back(AviChunk(chunk.id, chunk.data));
    }
    return AviList("movi", pieces);
}

ByteVector AviIndex(const std::vector<AviDataChunk>& chunks) {
    ByteBuilder records;
    std::uint32_t offset = 4;
    for (const auto& chunk : chunks) {
        const auto size = static_cast<std::uint32_t>(chunk.data.size());
        records.Text(chunk.id).Little32(0x10).Little32(offset).Little32(size);
        offset += 8 + size + size % 2;
    }
    return AviChunk("idx1", records.View());
}

ByteVector AviFile::Bytes() const {
    std::vector<ByteVector> pieces = {AviHeaderList(mainHeader, streamLists)};
    pieces.insert(pieces.end(), beforeMovie.begin(), beforeMovie.end());
    pieces.push_back(AviMovieList(chunks));
    if (withIndex) {
        pieces.push_back(AviIndex(chunks));
    }
    pieces.insert(pieces.end(), behind.begin(), behind.end());
    return AviRiff("AVI ", pieces);
}

std::vector<AviDataChunk> AviChunks(std::size_t count, std::size_t size) {
    std::vector<AviDataChunk> chunks;
    for (std::size_t i = 0; i < count; ++i) {
        const auto seed = static_cast<std::uint32_t>(i);
        chunks.push_back(AviPicture(size + 3 * i, seed));
        if (i % 2 == 1) {
            chunks.push_back(AviSound(size / 2 + i, seed));
        }
    }
    return chunks;
}

std::size_t FindText(ByteView bytes, std::string_view letters, std::size_t from) {
    const auto start = bytes.begin() + static_cast<std::ptrdiff_t>(std::min(from, bytes.size()));
    return static_cast<std::size_t>(std::search(start, bytes.end(), letters.begin(), letters.end(),
                                                [](std::uint8_t byte, char letter) {
                                                    return byte ==
                                                           static_cast<std::uint8_t>(letter);
                                                }) -
                                    bytes.begin());
}

void Overwrite(ByteVector& bytes, std::size_t at, ByteView with) {
    Need(at <= bytes.size() && with.size() <= bytes.size() - at, "overwriting outside");
    std::copy(with.begin(), with.end(), bytes.begin() + static_cast<std::ptrdiff_t>(at));
}

void OverwriteText(ByteVector& bytes, std::size_t at, std::string_view letters) {
    Overwrite(bytes, at, ByteBuilder().Text(letters).View());
}

void OverwriteLittle32(ByteVector& bytes, std::size_t at, std::uint32_t value) {
    Overwrite(bytes, at, ByteBuilder().Little32(value).View());
}

void Erase(ByteVector& bytes, std::size_t at, std::size_t length) {
    Need(at <= bytes.size() && length <= bytes.size() - at, "erasing outside");
    const auto start = bytes.begin() + static_cast<std::ptrdiff_t>(at);
    bytes.erase(start, start + static_cast<std::ptrdiff_t>(length));
}

void Insert(ByteVector& bytes, std::size_t at, ByteView more) {
    Need(at <= bytes.size(), "inserting outside");
    bytes.insert(bytes.begin() + static_cast<std::ptrdiff_t>(at), more.begin(), more.end());
}

}  // namespace clipfix::test
