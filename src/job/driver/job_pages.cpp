#include <string>

#include "job/driver/job_driver.h"

// What stands on each page of a job: which controls are shown and hidden, and their texts. There
// are no page objects; a page is what the three sections show.
namespace clipfix {

namespace {

using enum JobControlId;

constexpr std::uint32_t kRed = 0x0000FF;  // 0x00BBGGRR

}  // namespace

void JobDriver::ShowProgressView() {
    const bool movJob = state_.g_bMovJob == 1;
    SetText(Title, "IDS_REPAIRING_VIDEO");
    frontEnd_.Redraw(JobSection::Top);
    Hide({Repair, Back});
    Show({Pause, Cancel});
    Hide({AddFile});
    if (movJob) {
        Hide({ChooseReference, WhyHealthyLink});
    }
    SetText(StatusText, movJob ? "IDS_PLEASE_WAIT_ANALYSING" : "IDS_PLEASE_WAIT");
    ShowProgressControls();
    frontEnd_.ResetBar();
    frontEnd_.Redraw(JobSection::Centre);
    StartBusyAnimation(false);
}

void JobDriver::ShowProgressControls() {
    SetText(StartTimeCaption, "IDS_START_TIME");
    SetText(ElapsedTimeCaption, "IDS_ELAPSED_TIME");
    frontEnd_.SetText(StartTimeValue, " 00:00:00", {});
    frontEnd_.SetText(ElapsedTimeValue, " 00:00:00", {});
    ShowPercent(0);
    Show({StatusText, ProgressBar, StartTimeCaption, ElapsedTimeCaption, StartTimeValue,
          ElapsedTimeValue, PercentText});
}

void JobDriver::ShowReferencePage() {
    Hide({AddFile});
    for (const auto control : {ChooseReference, WhyHealthyLink}) {
        frontEnd_.SetEnabled(control, true);
        frontEnd_.SetVisible(control, true);
    }
    frontEnd_.SetText(JobControlId::CorruptedLabel, state_.g_strCorruptLabel, {});
    Show({JobControlId::CorruptedLabel});
    SetText(ReferenceText, "IDS_SELECT_REFERENCE", {.colour = kRed});
    Show({ReferenceText});
    SetText(Title, "IDS_SELECT_REFERNCE_HEADER",
            {.height = 25, .colour = 0x4B4B4B, .face = "Segoe UI", .fill = 0xF7F7F7});
    frontEnd_.SetEnabled(Repair, false);
    Show({Repair});
    frontEnd_.SetEnabled(Back, true);
    Show({Back});
    Hide({Pause, Cancel, StatusText, ProgressBar, StartTimeCaption, ElapsedTimeCaption,
          StartTimeValue, ElapsedTimeValue, PercentText});
}

void JobDriver::ShowFinishedPage() {
    SetText(Title, "IDS_REPAIRED_DETAILS");
    frontEnd_.ShowDetails();
    frontEnd_.Redraw(JobSection::Centre);
    Hide({SelectedText});
    if (state_.g_bMovJob == 1) {
        Hide({JobControlId::CorruptedLabel, ReferenceText});
    } else {
        Hide({PathLabel});
    }
    Hide({Cancel, Pause});
    Show({Home, Preview, Save});
}

// Shown with g_bSaving at 1, Cancel stands at the bottom right of its section, 27 pixels from the
// sides.
void JobDriver::ShowSaving() {
    SetText(Title, "IDS_SAVING_VIDEO");
    Hide({Home, Preview, Save});
    Show({Cancel});
    Hide({DetailsGrid, PlayPicture});
    SetText(StatusText, "IDS_PLEASE_WAIT_SAVING");
    ShowProgressControls();
    frontEnd_.SetBar(0);
    frontEnd_.Redraw(JobSection::Frame);
    StartBusyAnimation(true);
}

void JobDriver::ShowHomeState() {
    SetText(Title, "IDS_SELECT_VIDEO");
    state_.g_bMovJob = 0;
    Hide({ChooseReference, WhyHealthyLink, StatusText, ProgressBar, StartTimeCaption,
          StartTimeValue, ElapsedTimeCaption, ElapsedTimeValue, PercentText, DetailsGrid,
          PlayPicture, BusyAnimation});
    Show({AddFile});
    Hide({Repair, Pause, Cancel, Back, Home, Preview, Save, SelectedText,
          JobControlId::CorruptedLabel, ReferenceText, PathLabel});
    Show({Hint});
    state_.g_lJobAlive = 0;
    {
        const std::lock_guard lock(meeting_);
        state_.g_strReferencePath.clear();
    }
    frontEnd_.Redraw(JobSection::Frame);
}

void JobDriver::ShowPercent(int percent) {
    frontEnd_.SetText(PercentText, std::to_string(percent) + "%", {});
}

}  // namespace clipfix
