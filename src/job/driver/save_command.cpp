#include <cstdint>
#include <cstdio>
#include <memory>
#include <optional>
#include <utility>

#include "job/driver/job_driver.h"
#include "platform/folders.h"

// The Save command, on the interface thread: from the press of the button to the started worker.
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
    const auto chosen = AskSavePath();
    if (!chosen) {
        frontEnd_.SetEnabled(Save, true);
        return;
    }
    state_.g_bSaving = 1;
    state_.g_strSavePath = *chosen;
    // Not tested: a destination that does not exist yet cannot be opened.
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
    control_.Resume(JobControl::Worker::Save);
    savePage_ = std::make_shared<CSavePage>(*this, std::move(destination));
    // Where the system gives no thread nothing is moved; Cancel leads out.
    static_cast<void>(saveWorkers_.Start([page = savePage_] { page->SaveThreadProc(); }));
}

std::optional<std::string> JobDriver::AskSavePath() {
    const bool movJob = state_.g_bMovJob == 1;
    return frontEnd_.AskSavePath(
        {.defaultExtension = movJob ? "*.mov" : "*.avi",
         .filter = movJob ? "Movie File(*.mov)|*.mov||" : "AVI File(*.avi)|*.avi||",
         .flags = kSaveDialogFlags,
         .name = DefaultSaveName(clock_.ToLocalTime(clock_.Now()), movJob)});
}

bool JobDriver::SaveFits() const {
    // An AVI job has no required size: the number compared is 0, so the test always passes. That
    // is meant.
    const auto required = state_.g_bMovJob == 1 ? static_cast<std::uint64_t>(state_.g_liOutputSize)
                                                : std::uint64_t{0};
    const auto free = state_.g_strSavePath.empty() ? std::optional<std::uint64_t>(0)
                                                   : platform::FreeBytes(state_.g_strSavePath);
    return free.value_or(0) >= required;
}

void JobDriver::OnSaveTimer() {
    if (savePage_ != nullptr) {
        savePage_->OnTimer();
    }
}

}  // namespace clipfix
