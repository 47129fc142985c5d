// Copies a file in each way that StretchCopier knows, at positions that do not lie alike in their
// pages, and prints the seconds:
//     copy_ways SOURCE TARGET
// bench/mov_vs_cp drives it.

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <filesystem>
#include <unistd.h>

#include "platform/stretch_copier.h"

namespace {

using clipfix::platform::File;
using clipfix::platform::StretchCopier;

// 0 when something failed.
double SecondsToCopy(const std::filesystem::path& from, const std::filesystem::path& to,
                     StretchCopier::Way way) {
    constexpr std::uint64_t kSkipped = 5;
    constexpr std::uint64_t kHead = 16;
    constexpr std::uint64_t kStretch = std::uint64_t{4} << 20U;
    std::filesystem::remove(to);
    ::sync();
    const auto source = File::OpenForReading(from);
    auto target = File::Create(to, File::Existing::Replace);
    if (!source || !target) {
        return 0;
    }
    const auto start = std::chrono::steady_clock::now();
    StretchCopier copier(source.Value(), target.Value(), way);
    const std::uint64_t total = source.Value().Size() - kSkipped;
    for (std::uint64_t done = 0; done < total;) {
        const std::uint64_t step = std::min(kStretch, total - done);
        const auto copied = copier.Copy(kSkipped + done, kHead + done, step);
        if (!copied || copied.Value() != step) {
            return 0;
        }
        done += step;
    }
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

}  // namespace

int main(int argumentCount, char** arguments) {
    if (argumentCount != 3) {
        std::fprintf(stderr, "usage: copy_ways SOURCE TARGET\n");
        return 2;
    }
    double within = 1e9;
    double memory = 1e9;
    for (int i = 0; i < 3; ++i) {
        within = std::min(
            within, SecondsToCopy(arguments[1], arguments[2], StretchCopier::Way::WithinSystem));
        memory = std::min(
            memory, SecondsToCopy(arguments[1], arguments[2], StretchCopier::Way::ThroughMemory));
    }
    std::filesystem::remove(arguments[2]);
    std::printf("within the system %.3f s, by two threads %.3f s\n", within, memory);
    return within > 0 && memory > 0 ? 0 : 1;
}
