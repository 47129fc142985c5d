#include <cstdio>
#include <filesystem>
#include <system_error>

#include "job/driver/job_driver.h"
#include "job/state/job_paths.h"

// The repair worker: from the structure check or the AVI engine to the end of the job.
namespace clipfix {

namespace {

using enum JobControlId;

// Both counts are of bytes.
constexpr std::uint64_t kGiB = 1073741824;
constexpr double kBytesInMiB = 1048576.0;

std::string SizeText(std::uint64_t bytes) {
    char text[64];
    if (bytes >= kGiB) {
        std::snprintf(text, sizeof text, "%.2f GB",
                      static_cast<double>(bytes) / static_cast<double>(kGiB));
    } else {
        std::snprintf(text, sizeof text, "%.2f MB", static_cast<double>(bytes) / kBytesInMiB);
    }
    return text;
}

}  // namespace

void JobDriver::RepairThreadProc() {
    state_.g_bJobFailed = 0;
    if (state_.g_bMovJob == 1) {
        RunMovJob();
    } else {
        RunAviJob();
    }
}

void JobDriver::RunMovJob() {
    if (state_.g_strCheckedPath.empty()) {
        EndMovJob();
        return;
    }
    movJob_ = engines_.MakeMovJob({state_, control_, frontEnd_});
    frontEnd_.SetText(StatusText, "Analyzing video file...",
                      {.height = 20, .colour = 0x4B4B4B, .face = "Segoe UI", .fill = 0xFFFFFF});
    if (!movJob_->ReadStructure()) {
        EndWithoutMovie();
        return;
    }
    movJob_->FindSamples();
    MakeWorkFolder();
    const auto output = settings_.workFolder / kRepairedMovName;
    std::error_code ignored;
    std::filesystem::remove(output, ignored);
    state_.g_strOutputPath = output.string();
    movJob_->WriteRepairedFile(state_.g_strOutputPath, state_.g_strCorruptPath);
    EndMovJob();
}

void JobDriver::EndWithoutMovie() {
    const bool wasCancelled = state_.g_lJobAlive == 0;
    // Compared to the letter: a path that differs only in case is another file.
    if (state_.g_strReferencePath == state_.g_strCorruptPath) {
        StopBusyAnimation();
        state_.g_bRepairPaused = 0;
        state_.g_bRepairRunning = 0;
        state_.g_strReferencePath.clear();
        ShowReferencePage();
        end_ = wasCancelled ? JobEnd::Cancelled : JobEnd::ReferenceNeeded;
        return;
    }
    state_.g_nMessageKind = 4;
    frontEnd_.RunMessageDialog(frontEnd_.Text("IDS_UNHEALTHY_1"), frontEnd_.Text("IDS_INFORMATION"),
                               "Yes", "No");
    state_.g_bRepairRunning = 0;
    GoHomeAs(wasCancelled ? JobEnd::Cancelled : JobEnd::ReferenceUnusable);
}

void JobDriver::ShowReferencePage() {
    Hide({AddFile});
    for (const auto control : {ChooseReference, WhyHealthyLink}) {
        frontEnd_.SetEnabled(control, true);
        frontEnd_.SetVisible(control, true);
    }
    frontEnd_.SetText(JobControlId::CorruptedLabel, state_.g_strCorruptLabel, {});
    frontEnd_.SetVisible(JobControlId::CorruptedLabel, true);
    constexpr std::uint32_t kRed = 0x0000FF;
    SetText(ReferenceText, "IDS_SELECT_REFERENCE", {.colour = kRed});
    frontEnd_.SetVisible(ReferenceText, true);
    SetText(Title, "IDS_SELECT_REFERNCE_HEADER",
            {.height = 25, .colour = 0x4B4B4B, .face = "Segoe UI", .fill = 0xF7F7F7});
    frontEnd_.SetEnabled(Repair, false);
    Show({Repair});
    frontEnd_.SetEnabled(Back, true);
    Show({Back});
    Hide({Pause, Cancel, StatusText, ProgressBar, StartTimeCaption, ElapsedTimeCaption,
          StartTimeValue, ElapsedTimeValue, PercentText});
}

void JobDriver::EndMovJob() {
    if (state_.g_bJobFailed == 0 && state_.g_lJobAlive != 0) {
        state_.g_lJobAlive = 0;
        if (state_.g_bRepairCancelled == 1) {
            // A cancel that came too late to stop the engine.
            state_.g_strOutputPath = " ";
            frontEnd_.SendAviProgress();
            frontEnd_.RunSystemBox(frontEnd_.Text("IDS_WORD8"), frontEnd_.Text("IDS_INFORMATION"));
            end_ = JobEnd::Cancelled;
            return;
        }
        FinishRepair();
        return;
    }
    const bool failed = state_.g_bJobFailed != 0;
    WaitForAnswerToGo();
    state_.g_bRepairRunning = 0;
    GoHomeAs(failed ? JobEnd::NothingRecovered : JobEnd::Cancelled);
}

void JobDriver::RunAviJob() {
    state_.g_lJobAlive = 1;
    aviJob_ = engines_.MakeAviJob({state_, control_, frontEnd_});
    if (aviJob_->Repair() == 0) {
        state_.g_nMessageKind = 4;
        frontEnd_.RunMessageDialog(frontEnd_.Text("IDS_UNHEALTHY_1"),
                                   frontEnd_.Text("IDS_INFORMATION"), "Yes", "No");
        state_.g_bJobFailed = 1;
    } else {
        MakeAviPlayerArgs();
    }
    hasWorker_ = false;
    if (state_.g_bJobFailed == 1 || state_.g_bAviContinue == 0) {
        const bool failed = state_.g_bJobFailed == 1;
        WaitForAnswerToGo();
        Hide({Cancel});
        state_.g_bRepairRunning = 0;
        state_.g_bJobFailed = 0;
        GoHomeAs(failed ? JobEnd::NothingRecovered : JobEnd::Cancelled);
        return;
    }
    FinishRepair();
}

void JobDriver::MakeAviPlayerArgs() {
    state_.g_strPlayerArgs = state_.g_strAviRepairedPath + "$$" + state_.g_strCorruptName + "$$" +
                             SizeText(state_.g_ullAviRiffBody) + "$$" + "$$0";
}

void JobDriver::FinishRepair() {
    ++state_.g_nFinishedJobs;
    state_.g_bRepairCancelled = 0;
    frontEnd_.StopTimer(kClockTimer);
    frontEnd_.StartTimer(kClockTimer, 1000);
    clockRuns_ = true;
    state_.g_tStart = clock_.Now();
    state_.g_bRepairRunning = 0;
    SetText(Title, "IDS_REPAIRED_DETAILS");
    frontEnd_.ShowDetails();
    frontEnd_.Redraw(JobSection::Centre);
    Hide({SelectedText});
    if (state_.g_bMovJob == 1) {
        Hide({JobControlId::CorruptedLabel, ReferenceText});
    } else {
        Hide({PathLabel});
    }
    Hide({Cancel, Pause});
    Show({Home, Preview, Save});
    hasWorker_ = false;
    frontEnd_.Redraw(JobSection::Bottom);
    end_ = JobEnd::Repaired;
}

// The answer Yes of a cancel stands until a later dialog is closed with No or OK: after the note
// of a MOV job's cancel, or, in an AVI job, whatever dialog comes next.
void JobDriver::WaitForAnswerToGo() {
    control_.WaitUntil([this] { return state_.g_bMessageYes != 1; });
}

void JobDriver::GoHomeAs(JobEnd end) {
    OnHome();
    end_ = end;
}

}  // namespace clipfix
