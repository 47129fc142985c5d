// Makes files for the measures of the AVI engine, and runs the engine alone, without a driver.
//
//     avi_bench make intact|random|zeros|text|sparse BYTES FILE
//     avi_bench run FILE WORKFOLDER      prints: seconds, peak KiB, video chunks, audio chunks

#include <algorithm>
#include <charconv>
#include <chrono>
#include <cstdint>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iostream>
#include <string>
#include <string_view>
#include <sys/resource.h>

#include "base/bytes.h"
#include "job/state/job_control.h"
#include "repairavi/repair_avi.h"
#include "support/silent_front_end.h"

namespace {

using namespace clipfix;

class Random {
  public:
    std::uint64_t Next() {
        state_ ^= state_ << 13U;
        state_ ^= state_ >> 7U;
        state_ ^= state_ << 17U;
        return state_;
    }
    void Fill(ByteVector& bytes) {
        for (std::size_t i = 0; i + 8 <= bytes.size(); i += 8) {
            const std::uint64_t value = Next();
            std::memcpy(bytes.data() + i, &value, 8);
        }
    }

  private:
    std::uint64_t state_ = 0x9E3779B97F4A7C15U;
};

void Put(std::ofstream& out, ByteView bytes) {
    const std::string letters(bytes.begin(), bytes.end());
    out.write(letters.data(), static_cast<std::streamsize>(letters.size()));
}

ByteVector Chunk(std::string_view id, ByteView data) {
    ByteVector bytes;
    AppendText(bytes, id);
    AppendLittle32(bytes, static_cast<std::uint32_t>(data.size()));
    AppendBytes(bytes, data);
    AppendZeros(bytes, data.size() % 2);
    return bytes;
}

ByteVector List(std::string_view type, ByteView body) {
    ByteVector bytes;
    AppendText(bytes, type);
    AppendBytes(bytes, body);
    return Chunk("LIST", bytes);
}

ByteVector StreamList(std::string_view type, std::string_view handler, ByteView format) {
    ByteVector header;
    AppendText(header, type);
    AppendText(header, handler);
    AppendZeros(header, 48);
    ByteVector body = Chunk("strh", header);
    AppendBytes(body, Chunk("strf", format));
    return List("strl", body);
}

// Everything ahead of the first data chunk.
ByteVector FileHead() {
    ByteVector pictureFormat(40);
    StoreLittle32(pictureFormat, 0, 40);
    StoreLittle32(pictureFormat, 4, 640);
    StoreLittle32(pictureFormat, 8, 480);
    pictureFormat[12] = 1;
    pictureFormat[14] = 24;
    std::memcpy(pictureFormat.data() + 16, "XVID", 4);
    ByteVector main(56);
    StoreLittle32(main, 0, 40000);
    StoreLittle32(main, 12, 0x10);
    ByteVector body = Chunk("avih", main);
    AppendBytes(body, StreamList("vids", "XVID", pictureFormat));
    AppendBytes(body, StreamList("auds", std::string(4, '\0'), ByteVector(16, 1)));
    ByteVector head;
    AppendText(head, "RIFF");
    AppendLittle32(head, 0);
    AppendText(head, "AVI ");
    AppendBytes(head, List("hdrl", body));
    AppendText(head, "LIST");
    AppendLittle32(head, 0);
    AppendText(head, "movi");
    return head;
}

// Pictures of 4 to 68 KB with a sound of 1 KB behind each, as a camera of 640x480 writes them.
void PutChunks(std::ofstream& out, std::uint64_t bytes) {
    Random random;
    ByteVector noise(std::size_t{1} << 20U);
    random.Fill(noise);
    for (std::uint64_t done = 0; done < bytes;) {
        const std::size_t size = 4096 + random.Next() % 65536;
        const std::size_t from = random.Next() % (noise.size() - size);
        const ByteVector picture = Chunk("00dc", SubView(noise, from, size));
        const ByteVector sound = Chunk("01wb", SubView(noise, from / 2, 1024));
        Put(out, picture);
        Put(out, sound);
        done += picture.size() + sound.size();
    }
}

void PutStretch(std::ofstream& out, std::string_view kind, std::uint64_t bytes) {
    Random random;
    ByteVector piece(std::size_t{1} << 20U);
    for (std::uint64_t done = 0; done < bytes; done += piece.size()) {
        if (kind == "random") {
            random.Fill(piece);
        } else if (kind == "text") {
            // Prose of a log or a page, with words that begin like markers among the others.
            constexpr std::string_view kWords[] = {
                "the ",   "of ",    "and ",    "a ",       "to ",    "in ",   "is ",   "that ",
                "it ",    "was ",   "for ",    "on ",      "are ",   "with ", "as ",   "at ",
                "be ",    "this ",  "have ",   "from ",    "or ",    "one ",  "had ",  "by ",
                "word ",  "but ",   "not ",    "what ",    "all ",   "were ", "when ", "your ",
                "can ",   "said ",  "there ",  "use ",     "each ",  "which", " she ", "how ",
                "video ", "audio ", "moving ", "feedback", " list ", "idea ", "List ", "wide\n",
            };
            for (std::size_t at = 0; at < piece.size();) {
                const auto word = kWords[random.Next() % std::size(kWords)];
                const std::size_t length = std::min(word.size(), piece.size() - at);
                std::memcpy(piece.data() + at, word.data(), length);
                at += length;
            }
        }
        Put(out, piece);
    }
}

int Make(std::string_view kind, std::uint64_t bytes, const std::string& path) {
    std::ofstream out(path, std::ios::binary);
    Put(out, FileHead());
    if (kind == "intact") {
        PutChunks(out, bytes);
    } else if (kind == "sparse") {
        PutChunks(out, 5'000'000);
        out.seekp(static_cast<std::streamoff>(bytes));
        PutChunks(out, 5'000'000);
    } else {
        PutStretch(out, kind, bytes);
    }
    Put(out, Chunk("idx1", ByteVector(16)));
    out.close();
    return out ? 0 : 1;
}

int Run(const std::string& path, const std::string& workFolder) {
    JobState state;
    JobControl control(state);
    test::SilentFrontEnd frontEnd;
    state.g_strCorruptCopy = path;
    state.g_bAviContinue = 1;
    CRepairAVI engine({state, control, frontEnd}, workFolder);
    const auto start = std::chrono::steady_clock::now();
    const int result = engine.Repair();
    const std::chrono::duration<double> took = std::chrono::steady_clock::now() - start;
    engine.CloseWorkFiles();
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    std::cout << took.count() << ' ' << usage.ru_maxrss << ' ' << state.g_nAviVideoChunks << ' '
              << state.g_nAviAudioChunks << '\n';
    return result == 1 && state.writeFailed == 0 ? 0 : 1;
}

}  // namespace

int main(int argc, char** argv) {
    const std::string_view what = argc > 1 ? argv[1] : "";
    std::uint64_t bytes = 0;
    if (what == "make" && argc == 5) {
        const std::string_view number = argv[3];
        std::from_chars(number.data(), number.data() + number.size(), bytes);
        return Make(argv[2], bytes, argv[4]);
    }
    if (what == "run" && argc == 4) {
        return Run(argv[2], argv[3]);
    }
    std::cerr << "avi_bench make intact|random|zeros|text|sparse BYTES FILE\n"
                 "avi_bench run FILE WORKFOLDER\n";
    return 2;
}
