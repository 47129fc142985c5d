#pragma once

#include <string>

#include "base/bytes.h"
#include "support/avi_builder.h"
#include "support/media_tools.h"
#include "support/temp_folder.h"

namespace clipfix::test {

// Three seconds of 25 pictures each, made by ffmpeg as `shape` says. Of .mp4 by default.
inline ByteVector Movie(const std::string& shape, const std::string& extension = "mp4") {
    const TempFolder folder;
    const auto path = folder / ("m." + extension);
    MakeMedia(path,
              "-f lavfi -i testsrc2=size=160x120:rate=25:duration=3 "
              "-f lavfi -i sine=frequency=440:duration=3 -ac 2 " +
                  shape);
    return ReadFile(path);
}

// With chunks as cameras make them.
inline const ByteVector& CameraMovie() {
    static const ByteVector kMovie =
        Movie("-c:v libx264 -bf 0 -g 25 -c:a aac -chunk_duration 500000");
    return kMovie;
}

// What is left of a recording whose camera lost power before it wrote the index.
inline ByteVector WithoutMoov(ByteVector movie) {
    movie.resize(FindText(movie, "moov") - 4);
    return movie;
}

}  // namespace clipfix::test
