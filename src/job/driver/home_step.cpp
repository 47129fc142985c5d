#include <filesystem>
#include <system_error>

#include "job/driver/job_driver.h"

// The way home and out of the program. The home step may run on a worker as well.
namespace clipfix {

namespace {

using enum JobControlId;

// From this many graphic objects on the sections are made anew, to stay within the system's limit.
constexpr int kTooManyGraphicObjects = 7000;

}  // namespace

void JobDriver::OnHome() {
    if (clockRuns_) {
        frontEnd_.StopTimer(kClockTimer);
        clockRuns_ = false;
    }
    OnHomePage();
}

void JobDriver::OnBack() {
    frontEnd_.SetEnabled(Repair, true);
    OnHomePage();
}

void JobDriver::OnHomePage() {
    if (state_.g_bSaving == 1) {
        return;
    }
    if (state_.g_bPlayerOpen == 1) {
        frontEnd_.ClosePlayer();
        state_.g_bPlayerOpen = 0;
    }
    if (state_.g_bRepairRunning == 1) {
        const bool pausedHere = state_.g_bRepairPaused == 0;
        if (pausedHere) {
            OnPauseResume();
        }
        Note(4, "IDS_REPAIR_PROCESSING");
        if (pausedHere) {
            OnPauseResume();
        }
        return;
    }
    DeleteResult();
    if (frontEnd_.GraphicObjectCount() >= kTooManyGraphicObjects || state_.g_nFinishedJobs == 1) {
        frontEnd_.RebuildSections();
        state_.g_nFinishedJobs = 0;
    }
    ShowHomeState();
}

void JobDriver::DeleteResult() {
    std::error_code ignored;
    if (state_.g_bMovJob == 1) {
        std::filesystem::remove(state_.g_strOutputPath, ignored);
        return;
    }
    if (aviJob_ != nullptr) {
        aviJob_->CloseWorkFiles();
    }
    std::filesystem::remove(state_.g_strAviRepairedPath, ignored);
}

void JobDriver::ShowHomeState() {
    SetText(Title, "IDS_SELECT_VIDEO");
    state_.g_bMovJob = 0;
    Hide({ChooseReference, WhyHealthyLink, StatusText, ProgressBar, StartTimeCaption,
          StartTimeValue, ElapsedTimeCaption, ElapsedTimeValue, PercentText, DetailsGrid,
          PlayPicture});
    Show({AddFile});
    Hide({Repair, Pause, Cancel, Back, Home, Preview, Save, SelectedText,
          JobControlId::CorruptedLabel, ReferenceText, PathLabel});
    Show({Hint});
    state_.g_lJobAlive = 0;
    state_.g_strReferencePath.clear();
    frontEnd_.Redraw(JobSection::Frame);
}

bool JobDriver::OnCloseFrame() {
    const bool repairing = state_.g_bRepairRunning == 1;
    const bool saving = state_.g_bSaving == 1;
    if (!repairing && !saving) {
        Question(1, "IDS_CLOSE_DLG_MSG ");  // the key ends with a blank
        if (state_.g_bMessageYes != 1) {
            return false;
        }
        frontEnd_.ClosePlayer();
        DeleteResult();
        return true;
    }
    if (repairing) {
        const bool pausedHere = state_.g_bRepairPaused == 0;
        if (pausedHere) {
            OnPauseResume();
        }
        Note(4, "IDS_REPAIR_PROCESSING");
        if (pausedHere) {
            OnPauseResume();
        }
        return false;
    }
    state_.g_nPauseAccounted = 0;
    state_.g_tPause = clock_.Now();
    state_.g_bRepairPaused = 1;
    control_.Suspend(JobControl::Worker::Save);
    Note(4, "IDS_SAVE_PROCESSING");
    state_.g_bRepairPaused = 0;
    control_.Resume(JobControl::Worker::Save);
    return false;
}

}  // namespace clipfix
