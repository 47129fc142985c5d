#include "job/driver/job_driver.h"

#include <utility>

#include "platform/folders.h"

namespace clipfix {

JobDriver::JobDriver(JobContext context, JobEngines& engines, JobClock& clock, Settings settings)
    : state_(context.state),
      control_(context.control),
      frontEnd_(context.frontEnd),
      engines_(engines),
      clock_(clock),
      settings_(std::move(settings)) {}

JobDriver::~JobDriver() {
    leaving_ = true;
    state_.g_lSaveContinue = 0;
    control_.Resume(JobControl::Worker::Save);
    CancelAtOnce();
    WaitForWorkers();
}

void JobDriver::WaitForWorkers() {
    repairWorkers_.WaitForAll();
    saveWorkers_.WaitForAll();
}

void JobDriver::MakeWorkFolder() {
    // Only a folder that was made now is hidden; one that stood keeps its attributes.
    if (const auto made = platform::MakeFolder(settings_.workFolder); made && made.Value()) {
        platform::SetHidden(settings_.workFolder);
    }
}

void JobDriver::StartBusyAnimation(bool ofSave) {
    state_.g_bAnimationStopped = 0;
    frontEnd_.StartBusyAnimation(ofSave);
}

void JobDriver::StopBusyAnimation() {
    state_.g_bAnimationStopped = 1;
    frontEnd_.StopBusyAnimation();
}

void JobDriver::Note(int kind, std::string_view textKey) {
    RunDialog(kind, textKey, "IDS_INFORMATION", "", "Ok");
}

void JobDriver::Question(int kind, std::string_view textKey) {
    RunDialog(kind, textKey, "IDS_CONFIRMATION", "Yes", "No");
}

// The labels are those of a question; at kind 4 the dialog makes a note of it.
void JobDriver::TellUnhealthy() {
    RunDialog(4, "IDS_UNHEALTHY_1", "IDS_INFORMATION", "Yes", "No");
}

void JobDriver::RunDialog(int kind, std::string_view textKey, std::string_view titleKey,
                          const std::string& firstLabel, const std::string& secondLabel) {
    state_.g_nMessageKind = kind;
    frontEnd_.RunMessageDialog(frontEnd_.Text(textKey), frontEnd_.Text(titleKey), firstLabel,
                               secondLabel);
    control_.Wake();  // a worker may be waiting for the answer
}

void JobDriver::SetText(JobControlId control, std::string_view key, const TextStyle& style) {
    frontEnd_.SetText(control, frontEnd_.Text(key), style);
}

void JobDriver::Show(std::initializer_list<JobControlId> controls) {
    for (const auto control : controls) {
        frontEnd_.SetVisible(control, true);
    }
}

void JobDriver::Hide(std::initializer_list<JobControlId> controls) {
    for (const auto control : controls) {
        frontEnd_.SetVisible(control, false);
    }
}

}  // namespace clipfix
