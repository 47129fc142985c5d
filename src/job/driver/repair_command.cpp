#include "job/driver/job_driver.h"
#include "platform/file.h"
#include "platform/folders.h"

// The Repair command, on the interface thread: from the press of the button to the started worker.
namespace clipfix {

namespace {

// Bytes kept free on the file system of the work folder.
constexpr std::int64_t kReserve = 104857600;

}  // namespace

void JobDriver::OnRepair() {
    ++job_;  // a worker of an earlier job that is still waiting for an answer leaves
    control_.Resume(JobControl::Worker::Repair);
    end_ = JobEnd::None;
    state_.bytesUnreadable = 0;
    state_.writeFailed = 0;
    state_.writeFailure.clear();

    state_.g_bProgressFresh = 1;
    state_.g_bRepairCancelled = 0;
    state_.g_bRepairRunning = 1;
    state_.g_bRepairPaused = 0;
    state_.g_nMovPercent = 0;
    state_.g_tsPaused = 0;
    state_.g_tsPausedTotal = 0;
    ShowProgressView();
    if (state_.g_bMovJob == 1) {
        StartMovJob();
    } else {
        StartAviJob();
    }
}

void JobDriver::StartMovJob() {
    if (state_.g_strReferencePath.empty()) {
        // The first run of a job: the damaged file is its own reference.
        const std::lock_guard lock(meeting_);
        state_.g_strReferencePath = state_.g_strCorruptPath;
        state_.g_strCheckedPath = state_.g_strReferencePath;
    }
    // The size tested is that of the reference, also where the damaged file is another one.
    switch (TestSpace(state_.g_strReferencePath)) {
        case SpaceTest::CannotOpen:
            Note(4, "IDS_MOVERROR4");
            // g_bRepairRunning is still 1, so the home step refuses with a note of its own and the
            // progress view stays with Pause and Cancel. That is meant; Cancel leads out.
            OnHome();
            end_ = JobEnd::CannotOpen;
            return;
        case SpaceTest::TooSmall:
            LeaveForWantOfSpace();
            return;
        case SpaceTest::Fits:
            StartWorker();
            return;
    }
}

void JobDriver::StartAviJob() {
    if (state_.g_strCorruptPath.empty()) {
        // The texts are loaded and none is shown; nothing is reset. That is meant, here and below.
        static_cast<void>(frontEnd_.Text("IDS_WORD5"));
        static_cast<void>(frontEnd_.Text("IDS_INFORMATION"));
        end_ = JobEnd::CannotOpen;
        return;
    }
    switch (TestSpace(state_.g_strCorruptPath)) {
        case SpaceTest::CannotOpen:
            static_cast<void>(frontEnd_.Text("IDS_AVIERROR7"));
            static_cast<void>(frontEnd_.Text("IDS_INFORMATION"));
            end_ = JobEnd::CannotOpen;
            return;
        case SpaceTest::TooSmall:
            LeaveForWantOfSpace();
            return;
        case SpaceTest::Fits:
            StartWorker();
            return;
    }
}

JobDriver::SpaceTest JobDriver::TestSpace(const std::string& path) const {
    const auto file = platform::File::OpenForReading(path);
    if (!file) {
        return SpaceTest::CannotOpen;
    }
    const auto free = platform::FreeBytes(settings_.workFolder);
    const auto size = static_cast<std::int64_t>(file.Value().Size());
    return size > static_cast<std::int64_t>(free.value_or(0)) - kReserve ? SpaceTest::TooSmall
                                                                         : SpaceTest::Fits;
}

void JobDriver::LeaveForWantOfSpace() {
    Note(5, "IDS_ERROR9");
    OnPauseResume();  // with no worker it only sets the flag and changes the button's label
    state_.g_bRepairRunning = 0;
    end_ = JobEnd::NoSpace;
    OnHomePage();
}

// The clock runs before the worker does, so that a job that ends at once finds it to be stopped.
// Where the system gives no thread the progress view stays, and Cancel leads out.
void JobDriver::StartWorker() {
    clockRuns_ = true;
    frontEnd_.StartTimer(kClockTimer, 1000);
    state_.g_tStart = clock_.Now();
    hasWorker_ = true;
    if (!repairWorkers_.Start([this, job = job_.load()] { RepairThreadProc(job); })) {
        hasWorker_ = false;
    }
}

}  // namespace clipfix
