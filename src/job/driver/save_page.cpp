#include "job/driver/save_page.h"

#include <filesystem>
#include <system_error>
#include <utility>

#include "job/driver/job_driver.h"
#include "job/state/job_paths.h"

// The save worker, which moves the repaired file to its destination.
namespace clipfix {

CSavePage::CSavePage(JobDriver& driver, std::optional<platform::File> openedDestination)
    : driver_(driver),
      movJob_(driver.state_.g_bMovJob == 1),
      source_(movJob_ ? driver.state_.g_strOutputPath : driver.state_.g_strAviRepairedPath),
      destination_(driver.state_.g_strSavePath),
      openedDestination_(std::move(openedDestination)) {
    driver_.state_.g_nSavePercentShown = 0;
    driver_.frontEnd_.StartTimer(kSaveTimer, 500);
    driver_.state_.g_lSaveContinue = 1;
}

void CSavePage::SaveThreadProc() {
    SaveRepairedFile();
    driver_.state_.g_bSaveRunning = 0;
}

void CSavePage::SaveRepairedFile() {
    JobState& state = driver_.state_;
    if (!movJob_) {
        driver_.ShowSaving();  // a second time; that is meant
    }
    state.g_bSaveRunning = 1;
    ShowDestination();
    driver_.StartBusyAnimation(true);
    if (driver_.control_.KeepGoing(JobControl::Work::Save)) {
        // Whether the move succeeded is passed over: the save ends as completed all the same, and
        // the file stays in the work folder until the home step. That is meant.
        static_cast<void>(driver_.settings_.moveFile(
            source_, destination_, [this](std::uint64_t transferred, std::uint64_t total) {
                return SaveProgressRoutine(transferred, total);
            }));
    }
    if (!movJob_) {
        openedDestination_.reset();  // in a MOV job it stands open until the next save
    }
    driver_.control_.WaitWhileSuspended(JobControl::Worker::Save);
    if (driver_.leaving_) {
        return;
    }
    if (state.g_bMessageYes == 1) {
        EndCancelledSave();
    } else {
        EndSave();
    }
}

void CSavePage::ShowDestination() {
    JobFrontEnd& frontEnd = driver_.frontEnd_;
    frontEnd.SetText(
        JobControlId::PathLabel,
        frontEnd.Text("IDS_DESTINATION") + ": " + DisplayPath(destination_, kDisplayLimit), {});
    frontEnd.SetVisible(JobControlId::PathLabel, true);
}

// The answer Yes is seen here only while the note of the cancel stands. A save that comes to its
// end after that note was closed ends as completed. That is meant.
void CSavePage::EndCancelledSave() {
    if (!movJob_ && !driver_.aviSaveWasAborted_.exchange(true)) {
        std::error_code ignored;
        std::filesystem::remove(destination_, ignored);
    }
    driver_.state_.g_nSavePercent = 100;
    // The second key ends with two blanks.
    driver_.Note(3, movJob_ ? "IDS_SAVE_ABORTED" : "IDS_SAVE_ABORTED  ");
}

void CSavePage::EndSave() {
    JobState& state = driver_.state_;
    state.g_nSavePercent = 100;
    state.g_bSaving = 0;
    state.g_bSaveRunning = 0;
    driver_.Note(3, "IDS_SAVE_COMPLETED");
    driver_.frontEnd_.SetEnabled(JobControlId::Save, true);
    driver_.frontEnd_.OpenFolder(destination_.substr(0, destination_.rfind('/') + 1));
    driver_.frontEnd_.StartTimer(kHomeTimer, 1000);
}

bool CSavePage::SaveProgressRoutine(std::uint64_t transferred, std::uint64_t total) {
    // The move cannot be suspended from outside: it stands here, between two pieces.
    if (!driver_.control_.KeepGoing(JobControl::Work::Save)) {
        return false;
    }
    JobState& state = driver_.state_;
    const double percent =
        static_cast<double>(transferred) / static_cast<double>(total == 0 ? 1 : total) * 100;
    state.g_nSavePercent = static_cast<int>(percent);
    // Together with the timer's test this leaves jumps of two points and more undrawn. It is meant.
    if (state.g_nSavePercentShown + 1 < state.g_nSavePercent) {
        state.g_nSavePercentShown = state.g_nSavePercent.load();
    }
    return true;
}

void CSavePage::OnTimer() {
    JobState& state = driver_.state_;
    const int percent = state.g_nSavePercent;
    if (percent > state.g_nSavePercentShown) {
        driver_.frontEnd_.SetBar(percent);
        driver_.ShowPercent(percent);
        state.g_nSavePercentShown = percent;
    }
}

}  // namespace clipfix
