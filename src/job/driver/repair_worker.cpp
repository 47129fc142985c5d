#include <filesystem>
#include <system_error>
#include <utility>

#include "job/driver/job_driver.h"
#include "job/driver/player_args.h"
#include "job/state/job_paths.h"

// The repair worker: from the structure check or the AVI engine to the end of the job. Its engines
// stand at their checkpoints while it is suspended, and it does so itself before it ends the job,
// so that nothing changes behind a question.
namespace clipfix {

namespace {

using enum JobControlId;

// What an output path becomes that names no file any more.
constexpr const char* kNoOutput = " ";

}  // namespace

void JobDriver::RepairThreadProc(JobNumber job) {
    // Exactly one worker works. An earlier one may still be inside a read of a medium that is dying
    // when its job was cancelled and the next one begun.
    const std::lock_guard turn(workerTurn_);
    if (IsReleased(job)) {
        return;
    }
    control_.Begin();
    state_.g_bJobFailed = 0;
    if (state_.g_bMovJob == 1) {
        RunMovJob(job);
    } else {
        RunAviJob(job);
    }
}

void JobDriver::RunMovJob(JobNumber job) {
    if (state_.g_strCheckedPath.empty()) {
        EndMovJob(job);
        return;
    }
    auto engine = engines_.MakeMovJob({state_, control_, frontEnd_});
    {
        const std::lock_guard lock(meeting_);
        movJob_ = std::move(engine);
    }
    frontEnd_.SetText(StatusText, "Analyzing video file...",
                      {.height = 20, .colour = 0x4B4B4B, .face = "Segoe UI", .fill = 0xFFFFFF});
    const bool holdsMovie = movJob_->ReadStructure();
    if (!holdsMovie) {
        if (MayEnd(job)) {
            EndWithoutMovie();
        }
        return;
    }
    movJob_->FindSamples();
    if (IsReleased(job)) {
        return;
    }
    WriteRepairedMovie();
    if (MayEnd(job)) {
        EndMovJob(job);
    } else {
        RemoveOutput();  // nobody goes home from this job any more
    }
}

void JobDriver::WriteRepairedMovie() {
    MakeWorkFolder();
    const std::string output = (settings_.workFolder / kRepairedMovName).string();
    SetOutputPath(output);
    RemoveOutput();
    movJob_->WriteRepairedFile(output, state_.g_strCorruptPath);
}

// The file under structure check holds no movie, or the check was cancelled, which looks alike.
void JobDriver::EndWithoutMovie() {
    const bool wasCancelled = state_.g_lJobAlive == 0;
    if (IsItsOwnReference()) {
        NeedReference();
        end_ = wasCancelled ? JobEnd::Cancelled : JobEnd::ReferenceNeeded;
        return;
    }
    TellUnhealthy();
    state_.g_bRepairRunning = 0;
    GoHomeAs(wasCancelled ? JobEnd::Cancelled : JobEnd::ReferenceUnusable);
}

// Compared to the letter: a path that differs only in case is another file, and a reference that
// was chosen and is the damaged file itself counts as none.
bool JobDriver::IsItsOwnReference() const {
    const std::lock_guard lock(meeting_);
    return state_.g_strReferencePath == state_.g_strCorruptPath;
}

void JobDriver::NeedReference() {
    StopBusyAnimation();
    {
        const std::lock_guard lock(meeting_);
        state_.g_strReferencePath.clear();
    }
    state_.g_bRepairPaused = 0;
    state_.g_bRepairRunning = 0;
    ShowReferencePage();
}

void JobDriver::EndMovJob(JobNumber job) {
    if (state_.g_bJobFailed == 0 && state_.g_lJobAlive != 0) {
        state_.g_lJobAlive = 0;
        if (state_.g_bRepairCancelled == 1) {
            EndLateCancelledMovJob();
        } else {
            FinishRepair();
        }
        return;
    }
    const bool failed = state_.g_bJobFailed != 0;
    if (WaitForAnswerToGo(job)) {
        state_.g_bRepairRunning = 0;
        GoHomeAs(failed ? JobEnd::NothingRecovered : JobEnd::Cancelled);
    }
}

// A cancel that came before the structure check had set its flag, or too late to clear it.
// The engine may have made its file all the same, and by the blanked path nobody finds it.
void JobDriver::EndLateCancelledMovJob() {
    RemoveOutput();
    SetOutputPath(kNoOutput);
    frontEnd_.SendAviProgress();
    frontEnd_.RunSystemBox(frontEnd_.Text("IDS_WORD8"), frontEnd_.Text("IDS_INFORMATION"));
    end_ = JobEnd::Cancelled;
}

void JobDriver::RunAviJob(JobNumber job) {
    {
        // In one step, as the home step looks for it: either that step finds the engine at work and
        // leaves its files to it, or the engine of a job that was cancelled and left never starts.
        const std::lock_guard lock(meeting_);
        if (IsReleased(job)) {
            return;
        }
        state_.g_lJobAlive = 1;
        aviJob_ = engines_.MakeAviJob({state_, control_, frontEnd_});
        aviEngineRuns_ = true;
    }
    const int result = aviJob_->Repair();
    aviEngineRuns_ = false;
    if (!MayEnd(job)) {
        return;
    }
    if (result == 0) {
        TellUnhealthy();
        state_.g_bJobFailed = 1;
    } else if (!control_.IsLeft()) {
        // Of a cancelled job nothing is played, and the person may be choosing the next file.
        state_.g_strPlayerArgs = AviPlayerArgs(state_);
    }
    EndAviJob(job);
}

void JobDriver::EndAviJob(JobNumber job) {
    hasWorker_ = false;
    const bool failed = state_.g_bJobFailed == 1;
    if (!failed && state_.g_bAviContinue != 0 && !control_.IsLeft()) {
        FinishRepair();
        return;
    }
    // No note follows the cancel of an AVI job: the worker waits here, with Pause and Cancel on
    // the page, for whatever dialog is closed next. That is meant.
    if (WaitForAnswerToGo(job)) {
        Hide({Cancel});
        state_.g_bRepairRunning = 0;
        state_.g_bJobFailed = 0;
        GoHomeAs(failed ? JobEnd::NothingRecovered : JobEnd::Cancelled);
    }
}

void JobDriver::FinishRepair() {
    ++state_.g_nFinishedJobs;
    state_.g_bRepairCancelled = 0;
    // The clock of a coming save starts from here until the save resets it.
    frontEnd_.StopTimer(kClockTimer);
    frontEnd_.StartTimer(kClockTimer, 1000);
    clockRuns_ = true;
    state_.g_tStart = clock_.Now();
    state_.g_bRepairRunning = 0;
    ShowFinishedPage();
    hasWorker_ = false;
    frontEnd_.Redraw(JobSection::Bottom);
    end_ = JobEnd::Repaired;
}

void JobDriver::GoHomeAs(JobEnd end) {
    OnHome();
    end_ = end;
}

// The work is done, and what follows shows on the page. Waits while the worker is suspended; from
// then on nothing that the interface asks for comes in time any more. False when the worker is to
// leave without a word.
bool JobDriver::MayEnd(JobNumber job) {
    control_.TakeStep(JobControl::Worker::Repair, [&] { endingJob_ = job; });
    return !IsReleased(job);
}

// The answer Yes of a cancel stands until a later dialog is closed with No or OK: the note of a
// MOV job's cancel, or, in an AVI job, whatever dialog comes next. False when the worker is to
// leave without a word.
bool JobDriver::WaitForAnswerToGo(JobNumber job) {
    control_.WaitUntil([&] { return state_.g_bMessageYes != 1 || IsReleased(job); });
    return !IsReleased(job);
}

// Somebody went home from the job or began another one, or the driver is about to go.
bool JobDriver::IsReleased(JobNumber job) const {
    return leaving_ || job_ != job;
}

void JobDriver::SetOutputPath(std::string path) {
    const std::lock_guard lock(meeting_);
    state_.g_strOutputPath = std::move(path);
}

void JobDriver::RemoveOutput() {
    std::string path;
    {
        const std::lock_guard lock(meeting_);
        path = state_.g_strOutputPath;
    }
    if (path != kNoOutput) {
        std::error_code ignored;
        std::filesystem::remove(path, ignored);
    }
}

}  // namespace clipfix
