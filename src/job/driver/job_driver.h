#pragma once

#include <atomic>
#include <filesystem>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <thread>

#include "job/driver/job_clock.h"
#include "job/driver/job_engines.h"
#include "job/driver/save_page.h"
#include "job/state/job_control.h"
#include "job/state/job_front_end.h"
#include "job/state/job_state.h"

namespace clipfix {

// How a job ended, for who started it without a window.
enum class JobEnd {
    None,               // no job has ended yet
    Repaired,           // the pass ran to its end; the output stands in the work folder
    NothingRecovered,   // the engine found nothing that it could write
    ReferenceNeeded,    // the damaged file has no usable structure of its own
    ReferenceUnusable,  // the chosen reference has none either
    CannotOpen,         // the file could not be opened
    NoSpace,            // too little space for the job
    Cancelled,
};

// Ids of the timers that the driver starts on the interface thread.
inline constexpr int kClockTimer = 1;
inline constexpr int kHomeTimer = 1111;
inline constexpr int kSaveTimer = 503;

// The commands of the job flow, from the Repair button to the saved file. One object serves one
// window, or one run of the command line; it holds the workers of its jobs and waits for them when
// it goes. The commands are called on the interface thread, the `...ThreadProc` run on a worker.
class JobDriver {
  public:
    struct Settings {
        std::filesystem::path workFolder;  // made when a job needs it
    };

    // All that is handed over outlives the driver.
    JobDriver(JobContext context, JobEngines& engines, JobClock& clock, Settings settings);
    JobDriver(const JobDriver&) = delete;
    JobDriver& operator=(const JobDriver&) = delete;
    ~JobDriver();

    void OnRepair();       // command 335
    void OnCancelJob();    // command 334
    void OnPauseResume();  // command 337
    void OnHome();         // command 338
    void OnBack();         // command 347
    void OnSave();         // command 340
    void OnTimer(int id);  // kClockTimer and kHomeTimer
    void OnSaveTimer();    // kSaveTimer
    void OnAviProgress();  // the message 0x800B, on the interface thread

    // The home step of the main window.
    void OnHomePage();
    // The close command of the frame. True when the process is to be left: the person said Yes,
    // the player is closed and the result deleted.
    [[nodiscard]] bool OnCloseFrame();

    // Leaves the running job at the next checkpoint without asking; for a person's Ctrl-C.
    void CancelAtOnce();

    // Waits until no worker runs. Not to be called from a worker.
    void WaitForWorkers();

    [[nodiscard]] JobEnd End() const { return end_; }
    [[nodiscard]] const MovJob* CurrentMovJob() const { return movJob_.get(); }
    [[nodiscard]] const AviJob* CurrentAviJob() const { return aviJob_.get(); }
    [[nodiscard]] const std::filesystem::path& WorkFolder() const { return settings_.workFolder; }
    // Makes the work folder, hidden where it is new.
    void MakeWorkFolder();

  private:
    enum class SpaceTest { Fits, TooSmall, CannotOpen };

    // The Repair command.
    void ShowProgressView();
    void StartMovJob();
    void StartAviJob();
    void StartWorker();
    [[nodiscard]] SpaceTest TestSpace(const std::string& path) const;
    void LeaveForWantOfSpace();

    // The repair worker.
    void RepairThreadProc();
    void RunMovJob();
    void RunAviJob();
    void EndWithoutMovie();
    void ShowReferencePage();
    void EndMovJob();
    void FinishRepair();
    void MakeAviPlayerArgs();
    void WaitForAnswerToGo();
    void GoHomeAs(JobEnd end);

    // Pause and cancel.
    void CancelRepair();
    void CancelAfterYes();
    void CancelSave();

    // Save.
    void ShowSaving();
    [[nodiscard]] bool SaveFits() const;
    friend class CSavePage;

    // Home and close.
    void DeleteResult();
    void ShowHomeState();

    // Small tools.
    void StartBusyAnimation(bool ofSave);
    void StopBusyAnimation();
    void Note(int kind, std::string_view textKey);
    void Question(int kind, std::string_view textKey);
    void SetText(JobControlId control, std::string_view key, const TextStyle& style = {});
    void ShowPercent(int percent);
    void Show(std::initializer_list<JobControlId> controls);
    void Hide(std::initializer_list<JobControlId> controls);

    JobState& state_;
    JobControl& control_;
    JobFrontEnd& frontEnd_;
    JobEngines& engines_;
    JobClock& clock_;
    Settings settings_;

    std::unique_ptr<MovJob> movJob_;
    std::unique_ptr<AviJob> aviJob_;
    std::atomic<bool> hasWorker_{false};  // g_pWorkerThread is not null
    std::atomic<bool> clockRuns_{false};  // the id of timer 1 is not 0
    std::thread worker_;
    std::atomic<JobEnd> end_{JobEnd::None};

    std::unique_ptr<CSavePage> savePage_;
    bool aviSaveWasAborted_ = false;  // once in the life of the process
};

}  // namespace clipfix
