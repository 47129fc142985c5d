#include <chrono>
#include <cstdio>
#include <filesystem>
#include <fmt/format.h>
#include <unistd.h>

#include "cli/commands.h"
#include "cli/interrupt.h"
#include "cli/output_file.h"
#include "cli/report.h"
#include "cli/terminal_front_end.h"
#include "job/driver/job_driver.h"
#include "job/driver/real_engines.h"
#include "job/state/job_paths.h"
#include "platform/file.h"

namespace clipfix::cli {

namespace {

constexpr std::string_view kCancelled = "cancelled; nothing was left behind";

ExitStatus Print(const RepairReport& report, const RepairOptions& options) {
    if (options.json) {
        fmt::print("{}", ToJson(report));
    } else if (report.outcome == Outcome::Repaired) {
        if (!options.quiet) {
            fmt::print("{}", ToText(report));
        }
    } else {
        fmt::print(stderr, "clipfix: {}", ToText(report));
    }
    std::fflush(stdout);
    return StatusOf(report.outcome);
}

void TellNothingRecovered(RepairReport& report, const RealEngines& engines) {
    report.outcome = Outcome::Unhealthy;
    report.message = "nothing could be recovered from this file";
    if (report.kind == "avi") {
        return;
    }
    const std::string& why = engines.WhyReferenceFails();
    if (!report.reference.empty() && !why.empty()) {
        report.outcome = Outcome::ReferenceUnusable;
        report.message = "the reference cannot serve: " + why;
    } else if (!report.reference.empty()) {
        report.message += " with this reference";
    } else if (!why.empty()) {
        report.message += " by itself (" + why + "); a healthy reference may help";
    }
}

// The one sentence for each way in which a job can end, and its outcome.
void TellEnd(RepairReport& report, JobEnd end, const RealEngines& engines) {
    switch (end) {
        case JobEnd::Repaired:
            if (report.videoChunks + report.audioChunks == 0) {
                report.outcome = Outcome::Unhealthy;
                report.message = "nothing could be recovered: no picture and no sound was found";
            } else {
                report.outcome = Outcome::Repaired;
            }
            return;
        case JobEnd::NothingRecovered:
            TellNothingRecovered(report, engines);
            return;
        case JobEnd::ReferenceNeeded:
            report.outcome = Outcome::ReferenceNeeded;
            report.message =
                "the file's own structure cannot be read: a healthy recording from the same "
                "device is needed (--reference FILE)";
            return;
        case JobEnd::ReferenceUnusable:
            report.outcome = Outcome::ReferenceUnusable;
            report.message = "the reference cannot serve: " + engines.WhyReferenceFails();
            return;
        case JobEnd::NoSpace:
            report.outcome = Outcome::Failed;
            report.message = "there is too little free space for the repaired file";
            return;
        case JobEnd::Cancelled:
            report.outcome = Outcome::Cancelled;
            report.message = kCancelled;
            return;
        case JobEnd::CannotOpen:
        case JobEnd::None:
            report.outcome = Outcome::Failed;
            report.message = "the file cannot be opened";
            return;
    }
}

class RepairRun {
  public:
    RepairRun(const RepairOptions& options, OutputFile& output, std::uint64_t damagedSize)
        : output_(output),
          control_(state_),
          frontEnd_(state_, {.showProgress = !options.quiet && ::isatty(STDERR_FILENO) == 1,
                             .keepPercents = options.trace,
                             .damagedSize = damagedSize}),
          engines_(output.WorkFolder()),
          driver_({state_, control_, frontEnd_}, engines_, clock_,
                  {.workFolder = output.WorkFolder()}) {
        ChooseCorruptFile(state_, options.damaged);
        if (!options.reference.empty()) {
            ChooseReferenceFile(state_, options.reference);
        }
        frontEnd_.SetAviProgressHandler([this] { driver_.OnAviProgress(); });
        engines_.OnStandstill([this] {
            stoodStill_ = true;
            driver_.CancelAtOnce();
        });
    }

    // Runs the job and brings its result to its name.
    void Run(RepairReport& report) {
        const bool movJob = state_.g_bMovJob == 1;
        const InterruptWatch watch([this] {
            interrupted_ = true;
            driver_.CancelAtOnce();
        });
        driver_.OnRepair();
        driver_.WaitForWorkers();
        frontEnd_.ClearLine();
        FillCounts(report);
        TellEnd(report, interrupted_ ? JobEnd::Cancelled : driver_.End(), engines_);
        if (stoodStill_ && !interrupted_) {
            report.outcome = Outcome::Unhealthy;
            report.message = "nothing could be recovered: " + engines_.WhyStandstill();
        }
        if (report.outcome == Outcome::Repaired) {
            Publish(report, movJob ? kRepairedMovName : kRepairedAviName);
        }
    }

    [[nodiscard]] const std::vector<int>& Percents() const { return frontEnd_.Percents(); }

  private:
    void FillCounts(RepairReport& report) const {
        const auto& counts = engines_.Counts();
        report.videoChunks = counts.videoChunks;
        report.audioChunks = counts.audioChunks;
        report.videoSamples = counts.videoSamples;
        report.audioSamples = counts.audioSamples;
        report.bytesRead = counts.bytesRead;
        report.videoFormat = counts.videoFormat;
        report.audioFormat = counts.audioFormat;
        report.bytesUnreadable = state_.bytesUnreadable;
    }

    // What the window passes over, a write that failed, is a failure here.
    void Publish(RepairReport& report, std::string_view madeName) {
        const auto made = output_.WorkFolder() / madeName;
        std::error_code failed;
        report.outputSize = std::filesystem::file_size(made, failed);
        if (state_.writeFailed != 0 || failed) {
            report.outcome = Outcome::Failed;
            report.outputSize = 0;
            report.message = "the repaired file could not be written: " +
                             (state_.writeFailed != 0 ? state_.writeFailure : failed.message());
            return;
        }
        const auto published =
            output_.Publish(made, [this](std::uint64_t done, std::uint64_t total) {
                frontEnd_.ShowFlush(done, total);
                return !interrupted_;
            });
        frontEnd_.ClearLine();
        if (!published) {
            const Error& error = published.Failure();
            const bool cancelled = error.kind == ErrorKind::Cancelled;
            report.outcome = cancelled ? Outcome::Cancelled : Outcome::Failed;
            report.outputSize = 0;
            report.message = cancelled ? std::string(kCancelled) : error.text;
            return;
        }
        report.output = output_.Name().string();
        report.message = "repaired: " + output_.Name().string();
    }

    OutputFile& output_;
    JobState state_;
    JobControl control_;
    TerminalFrontEnd frontEnd_;
    RealEngines engines_;
    SystemClock clock_;
    std::atomic<bool> interrupted_{false};
    std::atomic<bool> stoodStill_{false};
    JobDriver driver_;
};

Outcome OutcomeOf(ErrorKind kind) {
    return kind == ErrorKind::AlreadyExists ? Outcome::WrongUse : Outcome::Failed;
}

}  // namespace

ExitStatus RunRepair(const RepairOptions& options) {
    const auto start = std::chrono::steady_clock::now();
    RepairReport report;
    const std::string extension = UpperExtension(options.damaged);
    const bool movJob = extension == "MOV" || extension == "MP4";
    report.kind = movJob ? "mov" : "avi";
    report.damaged = options.damaged;
    report.reference = options.reference;
    const auto refuse = [&](const Error& error) {
        report.outcome = OutcomeOf(error.kind);
        report.message = error.text;
        return Print(report, options);
    };

    const auto damaged = platform::File::OpenForReading(options.damaged);
    if (!damaged) {
        return refuse(damaged.Failure());
    }
    if (!options.reference.empty()) {
        if (const auto reference = platform::File::OpenForReading(options.reference); !reference) {
            return refuse(reference.Failure());
        }
    }
    const auto name = options.output.empty() ? DefaultOutputName(options.damaged, movJob)
                                             : std::filesystem::path(options.output);
    auto output = OutputFile::Prepare(name, {options.damaged, options.reference}, options.force);
    if (!output) {
        return refuse(output.Failure());
    }
    RepairRun run(options, output.Value(), damaged.Value().Size());
    run.Run(report);
    if (options.trace) {
        report.percents = run.Percents();
    }
    report.elapsedSeconds =
        std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    return Print(report, options);
}

}  // namespace clipfix::cli
