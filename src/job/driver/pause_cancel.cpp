#include <filesystem>
#include <system_error>

#include "job/driver/job_driver.h"

// Pause, resume, cancel, and the percent of an AVI job; all on the interface thread.
namespace clipfix {

namespace {

using enum JobControlId;

// From this percent on a MOV job is too near its end to be stopped: Yes is taken as No.
constexpr int kTooLateToCancel = 99;

}  // namespace

void JobDriver::OnPauseResume() {
    if (state_.g_bRepairPaused == 0) {
        state_.g_nPauseAccounted = 0;
        state_.g_tPause = clock_.Now();
        state_.g_bRepairPaused = 1;
        if (state_.g_bAnimationStopped == 0) {
            StopBusyAnimation();
        }
        SetText(Pause, "IDS_RESUME");
        if (hasWorker_) {
            control_.Suspend(JobControl::Worker::Repair);
        }
        return;
    }
    state_.g_bRepairPaused = 0;
    if (state_.g_bAnimationStopped == 1) {
        StartBusyAnimation(false);
    }
    SetText(Pause, "IDS_PAUSE");
    control_.Resume(JobControl::Worker::Repair);
    control_.Wake();
}

void JobDriver::OnCancelJob() {
    if (state_.g_bRepairRunning == 1) {
        CancelRepair();
    } else if (state_.g_bSaving == 1) {
        CancelSave();
    }
}

void JobDriver::CancelRepair() {
    if (state_.g_bRepairPaused != 1) {
        state_.g_bRepairPaused = 0;
        OnPauseResume();
    }
    Question(2, "IDS_CANCEL_DLG_MSG ");  // the key ends with a blank
    frontEnd_.Redraw(JobSection::Frame);
    if (HasEndedBehindTheDialog()) {
        LeaveEndedJobAlone();
        return;
    }
    // The MOV percent stays 0 in an AVI job, so there the second test always passes.
    if (state_.g_bMessageYes == 1 && state_.g_nMovPercent < kTooLateToCancel) {
        CancelAfterYes();
        return;
    }
    // A job that the person had paused goes on as well, and its button reads Pause. That is meant.
    state_.g_bRepairPaused = 1;
    OnPauseResume();
}

// The worker was past its last stop when it was suspended. The page that it shows stands, whatever
// the answer was.
bool JobDriver::HasEndedBehindTheDialog() const {
    return state_.g_bRepairRunning != 1 || endingJob_ == job_;
}

void JobDriver::LeaveEndedJobAlone() {
    state_.g_bRepairPaused = 0;
    SetText(Pause, "IDS_PAUSE");
    control_.Resume(JobControl::Worker::Repair);
}

// The flag that lets a MOV engine go is set only after the note was closed: g_bRepairPaused stays
// 1 until then, and the engine goes on waiting at its checkpoint.
void JobDriver::CancelAfterYes() {
    const bool movJob = state_.g_bMovJob == 1;
    (movJob ? state_.g_lJobAlive : state_.g_bAviContinue) = 0;
    if (!movJob) {
        control_.LeaveForGood();
    }
    if (hasWorker_) {
        control_.Resume(JobControl::Worker::Repair);
    }
    control_.Wake();
    clock_.Sleep(500);
    state_.g_tsPaused = 0;
    state_.g_tsPausedTotal = 0;
    if (movJob) {
        if (state_.g_bMajorVersion6 == 0) {
            RemoveOutput();
        }
        Note(3, "IDS_REPAIR_ABORTED");
        frontEnd_.Redraw(JobSection::Frame);
    }
    state_.g_bRepairRunning = 0;
    state_.g_bRepairCancelled = 1;
    state_.g_bRepairPaused = 0;
    control_.LeaveForGood();
    SetText(Pause, "IDS_PAUSE");
    Hide({Save, Home});
}

// A save stands still while it is asked about, and its clock with it.
void JobDriver::PauseSave() {
    state_.g_nPauseAccounted = 0;
    state_.g_tPause = clock_.Now();
    state_.g_bRepairPaused = 1;
    control_.Suspend(JobControl::Worker::Save);
}

void JobDriver::ResumeSave() {
    state_.g_bRepairPaused = 0;
    control_.Resume(JobControl::Worker::Save);
}

void JobDriver::CancelSave() {
    PauseSave();
    Question(2, "IDS_CANCEL_DLG_MSG ");  // the key ends with a blank
    frontEnd_.Redraw(JobSection::Frame);
    if (state_.g_bMessageYes == 1) {
        CancelSaveAfterYes();
    } else {
        ResumeSave();
    }
}

void JobDriver::CancelSaveAfterYes() {
    state_.g_bSaving = 0;
    state_.g_lSaveContinue = 0;
    ResumeSave();
    clock_.Sleep(50);
    std::error_code ignored;
    std::filesystem::remove(state_.g_strSavePath, ignored);
    StopBusyAnimation();
    Note(3, "IDS_SAVE_ABORTED");
    OnHomePage();
    frontEnd_.Redraw(JobSection::Frame);
}

void JobDriver::CancelAtOnce() {
    state_.g_lJobAlive = 0;
    state_.g_bAviContinue = 0;
    state_.g_bRepairCancelled = 1;
    state_.g_bRepairPaused = 0;
    control_.LeaveForGood();
    control_.Resume(JobControl::Worker::Repair);
}

void JobDriver::OnAviProgress() {
    if (state_.g_bMovJob == 1) {
        return;
    }
    if (state_.g_bProgressFresh == 1) {
        frontEnd_.ResetBar();
        frontEnd_.Redraw(JobSection::Centre);
        state_.g_bProgressFresh = 0;
        return;
    }
    if (state_.g_lJobAlive == 0) {
        state_.g_nAviPercent = 100;
        frontEnd_.SetBar(100);
        return;
    }
    const int percent = state_.g_nAviPercent;
    if (state_.g_nAviPercentShown == percent) {
        return;
    }
    state_.g_nAviPercentShown = percent;
    if (percent > 100) {
        return;
    }
    frontEnd_.SetBar(percent);
    if (percent == 100) {
        frontEnd_.ResetBar();
    }
    ShowPercent(percent);
}

}  // namespace clipfix
