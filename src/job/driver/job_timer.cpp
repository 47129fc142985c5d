#include "job/driver/job_driver.h"

// The clock of a job and the way home after a save, ticked by the interface thread.
namespace clipfix {

void JobDriver::OnTimer(int id) {
    if (id == kHomeTimer) {
        OnHome();
        return;
    }
    if (id != kClockTimer || (state_.g_bRepairRunning != 1 && state_.g_bSaveRunning != 1)) {
        return;
    }
    if (state_.g_bRepairPaused == 0 && state_.g_nMessageKind == 0) {
        if (state_.g_nPauseAccounted == 0) {
            state_.g_tsPaused += state_.g_tsPausedTotal;
            state_.g_tsPausedTotal = state_.g_tsPaused.load();
            ++state_.g_nPauseAccounted;
        }
        frontEnd_.SetText(JobControlId::StartTimeValue,
                          FormatClock(clock_.ToLocalTime(state_.g_tStart)), {});
        const std::int64_t elapsed = clock_.Now() - state_.g_tStart - state_.g_tsPaused;
        frontEnd_.SetText(JobControlId::ElapsedTimeValue, FormatSpan(elapsed), {});
    } else if (state_.g_bRepairPaused == 1) {
        state_.g_tsPaused = clock_.Now() - state_.g_tPause;
    }
}

}  // namespace clipfix
