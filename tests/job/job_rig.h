#pragma once

#include <functional>
#include <string>

#include "job/driver/job_driver.h"
#include "job/state/job_paths.h"
#include "manual_clock.h"
#include "pace.h"
#include "scripted_engines.h"
#include "support/job_log.h"
#include "support/scripted_front_end.h"
#include "support/temp_folder.h"

namespace clipfix::test {

// 15 November 2026, 05:03:09 UTC.
inline constexpr std::int64_t kTestNow = 1794718989;

inline constexpr std::uint64_t kMiB = 1048576;

// The question of a cancel.
inline const std::string kQuestion = "dialog 2: IDS_CANCEL_DLG_MSG  | IDS_CONFIRMATION | Yes | No";

// One driver with a scripted face, scripted engines and a clock that is moved by hand, in a folder
// of its own. The test's thread is the interface thread.
class JobRig {
  public:
    // The work folder may lie elsewhere, for example on a small file system.
    explicit JobRig(const std::filesystem::path& workFolder = {});

    // Files of the person's, and the choice of them. The damaged one is "damaged.mp4",
    // "damaged.avi"; the reference "healthy.mp4".
    void ChooseMov();
    void ChooseAvi();
    void ChooseReference();

    // Brings a job to its end with the engines as they are scripted.
    void FinishMovJob();
    void FinishAviJob();
    // Runs until no worker runs.
    void Wait() { driver.WaitForWorkers(); }

    [[nodiscard]] std::string DamagedMov() const { return (folder / "damaged.mp4").string(); }
    [[nodiscard]] std::string DamagedAvi() const { return (folder / "damaged.avi").string(); }
    [[nodiscard]] std::string Healthy() const { return (folder / "healthy.mp4").string(); }
    [[nodiscard]] std::string RepairedMov() const { return Work(kRepairedMovName); }
    [[nodiscard]] std::string RepairedAvi() const { return Work(kRepairedAviName); }

    // g_bRepairRunning and g_bRepairPaused, for example "running 1, paused 0".
    [[nodiscard]] std::string RepairFlags() const;
    // g_bSaving and g_bSaveRunning.
    [[nodiscard]] std::string SaveFlags() const;

    // What moves the file of a save.
    std::function<Result<void>(const std::string& source, const std::string& destination,
                               const platform::TransferProgress& progress)>
        move = platform::MoveFileWithProgress;

    TempFolder folder;
    JobState state;
    JobControl control;
    JobLog log;
    ScriptedFrontEnd face;
    ManualClock clock;
    ScriptedEngines engines;
    JobDriver driver;

  private:
    [[nodiscard]] std::string Work(std::string_view name) const {
        return (driver.WorkFolder() / name).string();
    }
};

// An engine's loop that passes a checkpoint in each round and goes round as the test says.
[[nodiscard]] bool GoRound(JobContext job, JobControl::Work work, Pace& pace);

// What stands in the log, worked out from the rules of each page.
extern const Lines kProgressControls;
extern const Lines kMovProgressView;
extern const Lines kAviProgressView;
extern const Lines kHomeState;
extern const Lines kReferencePage;
extern const Lines kFinishedMovPage;
extern const Lines kFinishedAviPage;
extern const Lines kSavingView;

}  // namespace clipfix::test
