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
    WaitForWorkers();
}

void JobDriver::WaitForWorkers() {
    if (worker_.joinable()) {
        worker_.join();
    }
    if (savePage_ != nullptr) {
        savePage_->WaitForThread();
    }
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
    state_.g_nMessageKind = kind;
    frontEnd_.RunMessageDialog(frontEnd_.Text(textKey), frontEnd_.Text("IDS_INFORMATION"), "",
                               "Ok");
    control_.Wake();
}

void JobDriver::Question(int kind, std::string_view textKey) {
    state_.g_nMessageKind = kind;
    frontEnd_.RunMessageDialog(frontEnd_.Text(textKey), frontEnd_.Text("IDS_CONFIRMATION"), "Yes",
                               "No");
    control_.Wake();
}

void JobDriver::SetText(JobControlId control, std::string_view key, const TextStyle& style) {
    frontEnd_.SetText(control, frontEnd_.Text(key), style);
}

void JobDriver::ShowPercent(int percent) {
    frontEnd_.SetText(JobControlId::PercentText, std::to_string(percent) + "%", {});
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
