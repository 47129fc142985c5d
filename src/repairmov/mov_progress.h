#pragma once

#include <string>

#include "job/state/job_control.h"
#include "job/state/job_front_end.h"

namespace clipfix {

// The percent of one phase of a MOV job. Each phase counts from 0 to 100 by itself, and a value is
// shown only when it differs from the one before.
class MovProgress {
  public:
    explicit MovProgress(JobContext job) : job_(job) {}

    // Shows what the engine is at, and sets the percent to 0 without showing it.
    void Begin(const std::string& statusText) {
        job_.frontEnd.SetText(JobControlId::StatusText, statusText, {.fill = 0xFFFFFF});
        job_.state.g_nMovPercent = 0;
    }

    void Show(int percent) {
        job_.state.g_nMovPercent = percent;
        if (percent != shown_) {
            job_.frontEnd.SetBar(percent);
            job_.frontEnd.SetText(JobControlId::PercentText, std::to_string(percent) + "%", {});
            shown_ = percent;
        }
    }

    [[nodiscard]] bool MayGoOn() { return job_.control.KeepGoing(JobControl::Work::MovEngine); }

  private:
    JobContext job_;
    int shown_ = 1000;  // a value that none equals, so that the first one is shown
};

}  // namespace clipfix
