// Runs one MOV job without a face and prints what it cost:
//     mov_job DAMAGED REFERENCE OUTPUT [THREADS]
// An OUTPUT of "-" scans only. bench/mov_vs_cp drives it.

#include "support/mov_job.h"

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <sys/resource.h>

#include "repairmov/repair_mov.h"

namespace {

double SecondsSince(std::chrono::steady_clock::time_point start) {
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

// Of the process so far, in KiB.
long PeakMemory() {
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return usage.ru_maxrss;
}

}  // namespace

int main(int argumentCount, char** arguments) {
    if (argumentCount < 4) {
        std::fprintf(stderr, "usage: mov_job DAMAGED REFERENCE OUTPUT [THREADS]\n");
        return 2;
    }
    const std::string damaged = arguments[1];
    const std::string output = arguments[3];
    clipfix::MovEngineOptions options;
    options.probeThreads =
        argumentCount > 4 ? static_cast<unsigned>(std::strtoul(arguments[4], nullptr, 10)) : 0;

    clipfix::test::MovJobWorld world;
    world.SetFiles(damaged, arguments[2]);
    clipfix::GFile movie(world.Context());
    clipfix::CRepairMOV engine(world.Context(), movie, options);
    auto start = std::chrono::steady_clock::now();
    movie.ReadStructure(world.state.g_strCheckedPath);
    const double checkSeconds = SecondsSince(start);
    start = std::chrono::steady_clock::now();
    engine.FindSamples();
    const double scanSeconds = SecondsSince(start);
    start = std::chrono::steady_clock::now();
    if (output != "-") {
        engine.WriteRepairedFile(output, damaged);
    }
    const double writeSeconds = SecondsSince(start);
    const clipfix::MovResults& results = engine.Results();
    std::printf(
        "{\"check\": %.4f, \"scan\": %.4f, \"write\": %.4f, \"peak_kib\": %ld, "
        "\"video_chunks\": %llu, \"audio_chunks\": %llu, \"video_samples\": %llu, "
        "\"audio_samples\": %llu}\n",
        checkSeconds, scanSeconds, writeSeconds, PeakMemory(),
        static_cast<unsigned long long>(results.videoChunks),
        static_cast<unsigned long long>(results.audioChunks),
        static_cast<unsigned long long>(results.videoSamples),
        static_cast<unsigned long long>(results.audioSamples));
    return world.state.g_bJobFailed == 0 && world.state.writeFailed == 0 ? 0 : 1;
}
