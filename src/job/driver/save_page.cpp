#include "job/driver/save_page.h"

#include <cstdio>
#include <system_error>
#include <utility>

#include "job/driver/job_driver.h"
#include "job/state/job_paths.h"
#include "platform/folders.h"
#include "platform/move_file.h"

// The save: the command on the interface thread, and the worker that moves the file.
namespace clipfix {

namespace {

using enum JobControlId;

// Asks before overwriting, demands that the folder exists, hides the read-only box.
constexpr int kSaveDialogFlags = 2054;

}  // namespace

std::string DefaultSaveName(const LocalTime& time, bool movJob) {
    char date[100];
    std::snprintf(date, sizeof date, " %d-%d-%d-%d-%d-%d", time.day, time.month, time.year,
                  time.hour, time.minute, time.second);
    return std::string("KelvoClipfix_") + date + (movJob ? ".mov" : ".avi");
}

void JobDriver::OnSave() {
    if (state_.g_bPlayerOpen == 1) {
        frontEnd_.ClosePlayer();
    }
    state_.g_tsPaused = 0;
    state_.g_tsPausedTotal = 0;
    const bool movJob = state_.g_bMovJob == 1;
    const auto chosen = frontEnd_.AskSavePath(
        {movJob ? "*.mov" : "*.avi",
         movJob ? "Movie File(*.mov)|*.mov||" : "AVI File(*.avi)|*.avi||", kSaveDialogFlags,
         DefaultSaveName(clock_.ToLocalTime(clock_.Now()), movJob)});
    if (!chosen) {
        frontEnd_.SetEnabled(Save, true);
        return;
    }
    state_.g_bSaving = 1;
    state_.g_strSavePath = *chosen;
    std::optional<platform::File> destination;
    if (auto opened = platform::File::OpenForReading(state_.g_strSavePath)) {
        destination = std::move(opened).Value();
    }
    if (!SaveFits()) {
        state_.g_bSaving = 0;
        frontEnd_.SetEnabled(Save, true);
        Note(5, "IDS_ERROR9");
        frontEnd_.Redraw(JobSection::Frame);
        return;
    }
    ShowSaving();
    state_.g_tStart = clock_.Now();
    WaitForWorkers();  // of an earlier save, long ended
    savePage_ = std::make_unique<CSavePage>(*this, std::move(destination));
}

bool JobDriver::SaveFits() const {
    // An AVI job has no required size: the number compared is 0, so the test always passes.
    const auto required = state_.g_bMovJob == 1 ? static_cast<std::uint64_t>(state_.g_liOutputSize)
                                                : std::uint64_t{0};
    const auto free = state_.g_strSavePath.empty() ? std::optional<std::uint64_t>(0)
                                                   : platform::FreeBytes(state_.g_strSavePath);
    return free.value_or(0) >= required;
}

void JobDriver::ShowSaving() {
    SetText(Title, "IDS_SAVING_VIDEO");
    Hide({Home, Preview, Save});
    Show({Cancel});
    Hide({DetailsGrid, PlayPicture});
    SetText(StatusText, "IDS_PLEASE_WAIT_SAVING");
    SetText(StartTimeCaption, "IDS_START_TIME");
    SetText(ElapsedTimeCaption, "IDS_ELAPSED_TIME");
    frontEnd_.SetText(StartTimeValue, " 00:00:00", {});
    frontEnd_.SetText(ElapsedTimeValue, " 00:00:00", {});
    ShowPercent(0);
    Show({StatusText, ProgressBar, StartTimeCaption, ElapsedTimeCaption, StartTimeValue,
          ElapsedTimeValue, PercentText});
    frontEnd_.SetBar(0);
    frontEnd_.Redraw(JobSection::Frame);
    StartBusyAnimation(true);
}

void JobDriver::OnSaveTimer() {
    if (savePage_ != nullptr) {
        savePage_->OnTimer();
    }
}

void JobDriver::CancelSave() {
    state_.g_nPauseAccounted = 0;
    state_.g_tPause = clock_.Now();
    state_.g_bRepairPaused = 1;
    control_.Suspend(JobControl::Worker::Save);
    Question(2, "IDS_CANCEL_DLG_MSG ");
    frontEnd_.Redraw(JobSection::Frame);
    if (state_.g_bMessageYes != 1) {
        state_.g_bRepairPaused = 0;
        control_.Resume(JobControl::Worker::Save);
        return;
    }
    state_.g_bRepairPaused = 0;
    state_.g_bSaving = 0;
    state_.g_lSaveContinue = 0;
    control_.Resume(JobControl::Worker::Save);
    clock_.Sleep(50);
    std::error_code ignored;
    std::filesystem::remove(state_.g_strSavePath, ignored);
    StopBusyAnimation();
    Note(3, "IDS_SAVE_ABORTED");
    OnHomePage();
    frontEnd_.Redraw(JobSection::Frame);
}

CSavePage::CSavePage(JobDriver& driver, std::optional<platform::File> openedDestination)
    : driver_(driver), openedDestination_(std::move(openedDestination)) {
    driver_.state_.g_nSavePercentShown = 0;
    driver_.frontEnd_.StartTimer(kSaveTimer, 500);
    driver_.state_.g_lSaveContinue = 1;
    driver_.control_.Resume(JobControl::Worker::Save);
    thread_ = std::thread([this] { SaveThreadProc(); });
}

CSavePage::~CSavePage() {
    WaitForThread();
}

void CSavePage::WaitForThread() {
    if (thread_.joinable()) {
        thread_.join();
    }
}

void CSavePage::SaveThreadProc() {
    SaveRepairedFile();
    driver_.state_.g_bSaveRunning = 0;
}

void CSavePage::SaveRepairedFile() {
    JobState& state = driver_.state_;
    const bool movJob = state.g_bMovJob == 1;
    if (!movJob) {
        driver_.ShowSaving();
    }
    state.g_bSaveRunning = 1;
    const std::string source = movJob ? state.g_strOutputPath : state.g_strAviRepairedPath;
    const std::string folder = state.g_strSavePath.substr(0, state.g_strSavePath.rfind('/') + 1);
    driver_.frontEnd_.SetText(PathLabel,
                              driver_.frontEnd_.Text("IDS_DESTINATION") + ": " +
                                  DisplayPath(state.g_strSavePath, kDisplayLimit),
                              {});
    driver_.frontEnd_.SetVisible(PathLabel, true);
    driver_.StartBusyAnimation(true);
    // Whether the move succeeded is passed over: the save ends as completed all the same, and the
    // file stays in the work folder until the home step. That is meant.
    static_cast<void>(platform::MoveFileWithProgress(
        source, state.g_strSavePath, [this](std::uint64_t transferred, std::uint64_t total) {
            return SaveProgressRoutine(transferred, total);
        }));
    if (!movJob) {
        openedDestination_.reset();  // in a MOV job it stands open until the next save
    }
    if (state.g_bMessageYes == 1) {
        EndCancelledSave();
    } else {
        EndSave(folder);
    }
}

void CSavePage::EndCancelledSave() {
    JobState& state = driver_.state_;
    const bool movJob = state.g_bMovJob == 1;
    if (!movJob && !std::exchange(driver_.aviSaveWasAborted_, true)) {
        std::error_code ignored;
        std::filesystem::remove(state.g_strSavePath, ignored);
    }
    state.g_nSavePercent = 100;
    driver_.Note(3, movJob ? "IDS_SAVE_ABORTED" : "IDS_SAVE_ABORTED  ");
}

void CSavePage::EndSave(const std::string& destinationFolder) {
    JobState& state = driver_.state_;
    state.g_nSavePercent = 100;
    state.g_bSaving = 0;
    state.g_bSaveRunning = 0;
    driver_.Note(3, "IDS_SAVE_COMPLETED");
    driver_.frontEnd_.SetEnabled(Save, true);
    driver_.frontEnd_.OpenFolder(destinationFolder);
    driver_.frontEnd_.StartTimer(kHomeTimer, 1000);
}

bool CSavePage::SaveProgressRoutine(std::uint64_t transferred, std::uint64_t total) {
    // The move has no suspension of its own: it waits here between two pieces.
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
