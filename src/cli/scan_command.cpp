#include <cstdio>
#include <fmt/format.h>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "cli/commands.h"
#include "cli/interrupt.h"
#include "cli/terminal_front_end.h"
#include "job/state/job_control.h"
#include "job/state/job_paths.h"
#include "moviefile/movie_file.h"
#include "moviefile/reference_check.h"
#include "platform/file.h"
#include "repairavi/repair_avi.h"
#include "repairmov/repair_mov.h"

namespace clipfix::cli {

namespace {

using Json = nlohmann::ordered_json;

// One chunk that a repair would take. Offsets and sizes are bytes in the damaged file.
struct ScannedChunk {
    std::string kind;  // "video" or "audio"
    std::string name;  // the record's name in a movie, the chunk's id in an AVI
    std::uint64_t offset = 0;
    std::uint64_t bytes = 0;
    std::uint64_t records = 0;
    std::uint64_t samples = 0;
};

struct ScanReport {
    ExitStatus status = ExitStatus::Repaired;
    std::string message;  // one sentence
    std::vector<ScannedChunk> chunks;
};

void PrintJson(const ScanOptions& options, const ScanReport& report) {
    Json object;
    object["damaged"] = options.damaged;
    object["reference"] = options.reference.empty() ? Json(nullptr) : Json(options.reference);
    object["message"] = report.message;
    object["chunks"] = Json::array();
    for (const auto& chunk : report.chunks) {
        object["chunks"].push_back({{"kind", chunk.kind},
                                    {"name", chunk.name},
                                    {"offset", chunk.offset},
                                    {"bytes", chunk.bytes},
                                    {"records", chunk.records},
                                    {"samples", chunk.samples}});
    }
    fmt::print("{}\n", object.dump(-1, ' ', false, Json::error_handler_t::replace));
}

void PrintText(const ScanReport& report) {
    if (report.status != ExitStatus::Repaired) {
        fmt::print(stderr, "clipfix: {}\n", report.message);
        return;
    }
    fmt::print("{:>6}  {:<5}  {:<4}  {:>14}  {:>12}  {:>8}  {:>8}\n", "chunk", "kind", "name",
               "offset", "bytes", "records", "samples");
    for (std::size_t i = 0; i < report.chunks.size(); ++i) {
        const auto& chunk = report.chunks[i];
        fmt::print("{:>6}  {:<5}  {:<4}  {:>14}  {:>12}  {:>8}  {:>8}\n", i + 1, chunk.kind,
                   chunk.name, chunk.offset, chunk.bytes, chunk.records, chunk.samples);
    }
    fmt::print("{}\n", report.message);
}

// Everything that a scan needs in the place of a job.
class Scan {
  public:
    explicit Scan(const ScanOptions& options) : options_(options) {
        ChooseCorruptFile(state_, options.damaged);
        ChooseReferenceFile(state_,
                            options.reference.empty() ? options.damaged : options.reference);
    }

    ScanReport Run() {
        ScanReport report;
        {
            const InterruptWatch watch([this] { Cancel(); });
            if (state_.g_bMovJob == 1) {
                ScanMovie(report);
            } else {
                ScanAvi(report);
            }
            if (watch.WasInterrupted()) {
                report.status = ExitStatus::Cancelled;
                report.message = "cancelled";
                return report;
            }
        }
        if (report.status == ExitStatus::Repaired) {
            Sum(report);
        }
        return report;
    }

  private:
    void Cancel() {
        state_.g_lJobAlive = 0;
        state_.g_bAviContinue = 0;
        state_.g_bRepairCancelled = 1;
        control_.Wake();
    }

    void ScanMovie(ScanReport& report) {
        GFile movie(Context());
        CRepairMOV engine(Context(), movie);
        movie.ReadStructure(options_.reference);
        const auto fault = FindReferenceFault(movie, state_);
        if (fault && options_.reference.empty()) {
            report.status = ExitStatus::ReferenceNeeded;
            report.message =
                "a healthy recording from the same device is needed (--reference "
                "FILE): " +
                std::string(SentenceOf(*fault));
            return;
        }
        if (fault) {
            report.status = ExitStatus::ReferenceUnusable;
            report.message = "the reference cannot serve: " + std::string(SentenceOf(*fault));
            return;
        }
        engine.FindSamples();
        for (const auto& chunk : engine.ListChunks()) {
            report.chunks.push_back({IsVideo(chunk.name) ? "video" : "audio",
                                     std::string(TextOf(chunk.name)), chunk.offset, chunk.bytes,
                                     chunk.records, chunk.samples});
        }
    }

    void ScanAvi(ScanReport& report) {
        state_.g_lJobAlive = 1;
        CRepairAVI engine(Context(), {});
        engine.OnStandstill([this] { Cancel(); });
        engine.ListChunks([&report](const AviChunk& chunk) {
            report.chunks.push_back(
                {chunk.isVideo ? "video" : "audio", chunk.id, chunk.offset, chunk.size, 1, 1});
        });
    }

    static void Sum(ScanReport& report) {
        std::uint64_t video = 0;
        std::uint64_t audio = 0;
        for (const auto& chunk : report.chunks) {
            (chunk.kind == "video" ? video : audio) += 1;
        }
        if (report.chunks.empty()) {
            report.status = ExitStatus::NothingRecovered;
            report.message = "nothing that a repair could take was found";
            return;
        }
        report.message = fmt::format("{} video and {} audio chunks", video, audio);
    }

    [[nodiscard]] JobContext Context() { return {state_, control_, frontEnd_}; }

    const ScanOptions& options_;
    JobState state_;
    JobControl control_{state_};
    TerminalFrontEnd frontEnd_{state_, {}};
};

}  // namespace

ExitStatus RunScan(const ScanOptions& options) {
    ScanReport report;
    for (const auto& path : {options.damaged, options.reference}) {
        if (path.empty()) {
            continue;
        }
        if (const auto file = platform::File::OpenForReading(path); !file) {
            report.status = ExitStatus::FileOrDiskFailed;
            report.message = file.Failure().text;
            break;
        }
    }
    if (report.status == ExitStatus::Repaired) {
        report = Scan(options).Run();
    }
    if (options.json) {
        PrintJson(options, report);
    } else {
        PrintText(report);
    }
    return report.status;
}

}  // namespace clipfix::cli
