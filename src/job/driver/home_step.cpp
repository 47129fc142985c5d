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
        RefuseWhileRepairing();
        return;
    }
    DeleteResult();
    if (frontEnd_.GraphicObjectCount() >= kTooManyGraphicObjects || state_.g_nFinishedJobs == 1) {
        frontEnd_.RebuildSections();
        clockRuns_ = false;  // the timers of the sections end with them
        state_.g_nFinishedJobs = 0;
    }
    ShowHomeState();
}

void JobDriver::RefuseWhileRepairing() {
    const bool pausedHere = state_.g_bRepairPaused == 0;
    if (pausedHere) {
        OnPauseResume();
    }
    Note(4, "IDS_REPAIR_PROCESSING");
    if (!pausedHere) {
        return;
    }
    if (HasEndedBehindTheDialog()) {
        LeaveEndedJobAlone();
    } else {
        OnPauseResume();
    }
}

void JobDriver::DeleteResult() {
    // A worker that was about to go home, or waits to, finds that somebody did, and leaves.
    ++job_;
    control_.Wake();
    if (state_.g_bMovJob == 1) {
        RemoveOutput();
        return;
    }
    const std::lock_guard lock(meeting_);
    if (aviEngineRuns_) {
        return;  // cancelled and on its way out; the engine deletes its files itself
    }
    if (aviJob_ != nullptr) {
        aviJob_->CloseWorkFiles();
    }
    std::error_code ignored;
    std::filesystem::remove(state_.g_strAviRepairedPath, ignored);
}

bool JobDriver::OnCloseFrame() {
    if (state_.g_bRepairRunning == 1) {
        RefuseWhileRepairing();
        return false;
    }
    if (state_.g_bSaving == 1) {
        PauseSave();
        Note(4, "IDS_SAVE_PROCESSING");
        ResumeSave();
        return false;
    }
    Question(1, "IDS_CLOSE_DLG_MSG ");  // the key ends with a blank
    if (state_.g_bMessageYes != 1) {
        return false;
    }
    frontEnd_.ClosePlayer();
    DeleteResult();
    return true;
}

}  // namespace clipfix
