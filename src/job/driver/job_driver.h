#pragma once

#include <atomic>
#include <filesystem>
#include <functional>
#include <initializer_list>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>

#include "job/driver/job_clock.h"
#include "job/driver/job_engines.h"
#include "job/driver/save_page.h"
#include "job/driver/worker_threads.h"
#include "job/state/job_control.h"
#include "job/state/job_front_end.h"
#include "job/state/job_state.h"
#include "platform/move_file.h"

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
// window, or one run of the command line. The commands are called on the interface thread; those
// of them that end a job (the home step) run on its worker as well.
//
// When the object goes, whatever still runs is left at its next checkpoint, without a word, and
// waited for. The front end must by then answer without the interface thread's help.
class JobDriver {
  public:
    struct Settings {
        std::filesystem::path workFolder;  // absolute; made when a job needs it
        // How a save moves its file. Tests put in one that stops in the middle.
        std::function<Result<void>(const std::string& source, const std::string& destination,
                                   const platform::TransferProgress& progress)>
            moveFile = platform::MoveFileWithProgress;
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

    // Waits until no worker runs. Not to be called from a worker, nor by a thread that a worker's
    // front end has to wait for.
    void WaitForWorkers();

    [[nodiscard]] JobEnd End() const { return end_; }
    // The engine of the last job of its kind, kept for the details. To be asked when no job runs.
    [[nodiscard]] const MovJob* CurrentMovJob() const { return movJob_.get(); }
    [[nodiscard]] const AviJob* CurrentAviJob() const { return aviJob_.get(); }
    [[nodiscard]] const std::filesystem::path& WorkFolder() const { return settings_.workFolder; }
    // Makes the work folder, hidden where it is new.
    void MakeWorkFolder();

  private:
    friend class CSavePage;
    enum class SpaceTest { Fits, TooSmall, CannotOpen };
    using JobNumber = unsigned;

    // The Repair command.
    void StartMovJob();
    void StartAviJob();
    void StartWorker();
    [[nodiscard]] SpaceTest TestSpace(const std::string& path) const;
    void LeaveForWantOfSpace();

    // The repair worker.
    void RepairThreadProc(JobNumber job);
    void RunMovJob(JobNumber job);
    void WriteRepairedMovie();
    void EndWithoutMovie();
    [[nodiscard]] bool IsItsOwnReference() const;
    void NeedReference();
    void EndMovJob(JobNumber job);
    void EndLateCancelledMovJob();
    void RunAviJob(JobNumber job);
    void EndAviJob(JobNumber job);
    void FinishRepair();
    void GoHomeAs(JobEnd end);
    [[nodiscard]] bool MayEnd(JobNumber job);
    [[nodiscard]] bool WaitForAnswerToGo(JobNumber job);
    [[nodiscard]] bool IsReleased(JobNumber job) const;
    void SetOutputPath(std::string path);
    void RemoveOutput();

    // Pause and cancel.
    void CancelRepair();
    void CancelAfterYes();
    [[nodiscard]] bool HasEndedBehindTheDialog() const;
    void LeaveEndedJobAlone();
    void CancelSave();
    void CancelSaveAfterYes();
    void PauseSave();
    void ResumeSave();

    // Save.
    [[nodiscard]] std::optional<std::string> AskSavePath();
    [[nodiscard]] bool SaveFits() const;

    // Home and close.
    void RefuseWhileRepairing();
    void DeleteResult();

    // The pages.
    void ShowProgressView();
    void ShowProgressControls();
    void ShowReferencePage();
    void ShowFinishedPage();
    void ShowSaving();
    void ShowHomeState();
    void ShowPercent(int percent);

    // Small tools.
    void StartBusyAnimation(bool ofSave);
    void StopBusyAnimation();
    void Note(int kind, std::string_view textKey);
    void Question(int kind, std::string_view textKey);
    void TellUnhealthy();
    void RunDialog(int kind, std::string_view textKey, std::string_view titleKey,
                   const std::string& firstLabel, const std::string& secondLabel);
    void SetText(JobControlId control, std::string_view key, const TextStyle& style = {});
    void Show(std::initializer_list<JobControlId> controls);
    void Hide(std::initializer_list<JobControlId> controls);

    JobState& state_;
    JobControl& control_;
    JobFrontEnd& frontEnd_;
    JobEngines& engines_;
    JobClock& clock_;
    Settings settings_;

    // Held for a moment where a worker and the interface thread may meet: g_strOutputPath,
    // g_strReferencePath and the engines of the job. Never while the front end is called.
    mutable std::mutex meeting_;
    std::unique_ptr<MovJob> movJob_;
    std::unique_ptr<AviJob> aviJob_;
    std::atomic<bool> aviEngineRuns_{false};
    std::mutex workerTurn_;  // held by the one repair worker that works

    std::atomic<bool> hasWorker_{false};   // g_pWorkerThread is not null
    std::atomic<bool> clockRuns_{false};   // the id of timer 1 is not 0
    std::atomic<JobNumber> job_{0};        // counts up at each Repair and at each home step
    std::atomic<JobNumber> endingJob_{0};  // whose worker has stood for the last time
    std::atomic<bool> leaving_{false};     // the driver is about to go
    std::atomic<JobEnd> end_{JobEnd::None};

    std::shared_ptr<CSavePage> savePage_;
    std::atomic<bool> aviSaveWasAborted_{false};

    // Last, so that the workers have ended before anything that they use goes.
    WorkerThreads repairWorkers_;
    WorkerThreads saveWorkers_;
};

}  // namespace clipfix
