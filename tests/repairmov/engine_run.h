#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "base/bytes.h"
#include "repairmov/repair_mov.h"
#include "support/mov_job.h"
#include "support/temp_folder.h"

namespace clipfix::test {

// A job from the structure check to the end, as a driver runs it, on a world of its own.
struct EngineRun {
    MovJobWorld world;
    bool hasMovie = false;  // of the reference
    std::vector<FoundChunk> chunks;
    MovResults results;
    ByteVector output;

    EngineRun(const std::filesystem::path& damaged, const std::filesystem::path& reference,
              unsigned threads = 0) {
        const TempFolder folder;
        Run(damaged, reference, folder / "Repaired.mov", threads);
    }
    EngineRun(const std::filesystem::path& damaged, const std::filesystem::path& reference,
              const std::filesystem::path& outputPath, unsigned threads) {
        Run(damaged, reference, outputPath, threads);
    }

  private:
    void Run(const std::filesystem::path& damaged, const std::filesystem::path& reference,
             const std::filesystem::path& outputPath, unsigned threads) {
        world.SetFiles(damaged, reference);
        GFile movie(world.Context());
        CRepairMOV engine(world.Context(), movie, {.probeThreads = threads});
        movie.ReadStructure(world.state.g_strCheckedPath);
        hasMovie = movie.pMoov != nullptr;
        engine.FindSamples();
        chunks = engine.ListChunks();
        world.state.g_strOutputPath = outputPath.string();
        engine.WriteRepairedFile(outputPath.string(), damaged.string());
        results = engine.Results();
        output = ReadFile(outputPath);
    }
};

}  // namespace clipfix::test
