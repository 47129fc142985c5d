#include "job_rig.h"

namespace clipfix::test {

JobRig::JobRig(const std::filesystem::path& workFolder)
    : control(state),
      face(state, log),
      clock(log),
      engines(log, workFolder.empty() ? folder.Path() / "$tp" : workFolder),
      driver({state, control, face}, engines, clock,
             {.workFolder = workFolder.empty() ? folder.Path() / "$tp" : workFolder,
              .moveFile = [this](const std::string& source, const std::string& destination,
                                 const platform::TransferProgress& progress) {
                  return move(source, destination, progress);
              }}) {
    clock.MoveTo(kTestNow);
    face.onAviProgress = [this] { driver.OnAviProgress(); };
}

void JobRig::ChooseMov() {
    WriteFile(DamagedMov(), ByteVector(2000, 1));
    ChooseCorruptFile(state, DamagedMov());
}

void JobRig::ChooseAvi() {
    WriteFile(DamagedAvi(), ByteVector(2000, 1));
    ChooseCorruptFile(state, DamagedAvi());
}

void JobRig::ChooseReference() {
    WriteFile(Healthy(), ByteVector(1000, 2));
    ChooseReferenceFile(state, Healthy());
}

void JobRig::FinishMovJob() {
    ChooseMov();
    driver.OnRepair();
    Wait();
}

void JobRig::FinishAviJob() {
    ChooseAvi();
    driver.OnRepair();
    Wait();
}

std::string JobRig::RepairFlags() const {
    return "running " + std::to_string(state.g_bRepairRunning) + ", paused " +
           std::to_string(state.g_bRepairPaused);
}

std::string JobRig::SaveFlags() const {
    return "saving " + std::to_string(state.g_bSaving) + ", running " +
           std::to_string(state.g_bSaveRunning);
}

bool GoRound(JobContext job, JobControl::Work work, Pace& pace) {
    while (job.control.KeepGoing(work)) {
        if (!pace.NextRound()) {
            return true;
        }
    }
    return false;
}

const Lines kProgressControls = {
    "StartTimeCaption = IDS_START_TIME",
    "ElapsedTimeCaption = IDS_ELAPSED_TIME",
    "StartTimeValue =  00:00:00",
    "ElapsedTimeValue =  00:00:00",
    "PercentText = 0%",
    "show StatusText",
    "show ProgressBar",
    "show StartTimeCaption",
    "show ElapsedTimeCaption",
    "show StartTimeValue",
    "show ElapsedTimeValue",
    "show PercentText",
};

const Lines kMovProgressView = Join({
    {"Title = IDS_REPAIRING_VIDEO", "redraw Top", "hide Repair", "hide Back", "show Pause",
     "show Cancel", "hide AddFile", "hide ChooseReference", "hide WhyHealthyLink",
     "StatusText = IDS_PLEASE_WAIT_ANALYSING"},
    kProgressControls,
    {"bar reset", "redraw Centre", "animate repair"},
});

const Lines kAviProgressView = Join({
    {"Title = IDS_REPAIRING_VIDEO", "redraw Top", "hide Repair", "hide Back", "show Pause",
     "show Cancel", "hide AddFile", "StatusText = IDS_PLEASE_WAIT"},
    kProgressControls,
    {"bar reset", "redraw Centre", "animate repair"},
});

const Lines kHomeState = {
    "Title = IDS_SELECT_VIDEO",
    "hide ChooseReference",
    "hide WhyHealthyLink",
    "hide StatusText",
    "hide ProgressBar",
    "hide StartTimeCaption",
    "hide StartTimeValue",
    "hide ElapsedTimeCaption",
    "hide ElapsedTimeValue",
    "hide PercentText",
    "hide DetailsGrid",
    "hide PlayPicture",
    "hide BusyAnimation",
    "show AddFile",
    "hide Repair",
    "hide Pause",
    "hide Cancel",
    "hide Back",
    "hide Home",
    "hide Preview",
    "hide Save",
    "hide SelectedText",
    "hide CorruptedLabel",
    "hide ReferenceText",
    "hide PathLabel",
    "show Hint",
    "redraw Frame",
};

// The damaged file's label stands between the two parts.
const Lines kReferencePage = {
    "show CorruptedLabel",
    "ReferenceText = IDS_SELECT_REFERENCE (20 px, 0000FF, Segoe UI)",
    "show ReferenceText",
    "Title = IDS_SELECT_REFERNCE_HEADER (25 px, 4B4B4B, Segoe UI, on F7F7F7)",
    "disable Repair",
    "show Repair",
    "enable Back",
    "show Back",
    "hide Pause",
    "hide Cancel",
    "hide StatusText",
    "hide ProgressBar",
    "hide StartTimeCaption",
    "hide ElapsedTimeCaption",
    "hide StartTimeValue",
    "hide ElapsedTimeValue",
    "hide PercentText",
};

const Lines kFinishedMovPage = {
    "stop timer 1",
    "timer 1: 1000 ms",
    "Title = IDS_REPAIRED_DETAILS",
    "details",
    "redraw Centre",
    "hide SelectedText",
    "hide CorruptedLabel",
    "hide ReferenceText",
    "hide Cancel",
    "hide Pause",
    "show Home",
    "show Preview",
    "show Save",
    "redraw Bottom",
};

const Lines kFinishedAviPage = {
    "stop timer 1",   "timer 1: 1000 ms", "Title = IDS_REPAIRED_DETAILS",
    "details",        "redraw Centre",    "hide SelectedText",
    "hide PathLabel", "hide Cancel",      "hide Pause",
    "show Home",      "show Preview",     "show Save",
    "redraw Bottom",
};

const Lines kSavingView = Join({
    {"Title = IDS_SAVING_VIDEO", "hide Home", "hide Preview", "hide Save", "show Cancel",
     "hide DetailsGrid", "hide PlayPicture", "StatusText = IDS_PLEASE_WAIT_SAVING"},
    kProgressControls,
    {"bar 0", "redraw Frame", "animate save"},
});

}  // namespace clipfix::test
