#pragma once

#include <atomic>
#include <condition_variable>
#include <functional>
#include <mutex>

#include "job/state/job_state.h"

namespace clipfix {

// Pause and cancel as the workers meet them. A worker cannot be stopped from outside; instead it
// passes a checkpoint often (within 50 ms of work), waits there while it is suspended or paused,
// and is woken at once by a change. Any thread may call any operation.
class JobControl {
  public:
    // Whose checkpoint it is; each kind of work is left by a flag of its own.
    enum class Work {
        StructureCheck,  // left when g_lJobAlive is 0
        MovEngine,       // waits on g_bRepairPaused as well; left when g_bRepairCancelled is 1
        AviEngine,       // left when g_bAviContinue is 0
        Save,            // left when g_lSaveContinue is 0
    };
    enum class Worker { Repair, Save };

    explicit JobControl(JobState& state) : state_(&state) {}

    // The one checkpoint of all engines. Waits while the worker is suspended; answers false when
    // the work is to be left. Cheap when nothing is asked: a few relaxed loads.
    [[nodiscard]] bool KeepGoing(Work work);

    // Only the wait of KeepGoing: for places that must pause and may not leave.
    void WaitWhileSuspended(Worker worker);

    // Waits while the worker is suspended, and takes a short step into which no suspension falls:
    // it comes either before, and is waited for, or behind.
    void TakeStep(Worker worker, const std::function<void()>& step);

    // Stops the worker at its next checkpoint, and lets it go on. Resuming a worker that is not
    // suspended, or does not exist, does nothing.
    void Suspend(Worker worker);
    void Resume(Worker worker);

    // The running job is over for its MOV or AVI engine, whatever the flags come to say: those of
    // the next job may be set while the engine is still inside a read of a medium that is dying.
    // Begin opens the next job's work, on its worker.
    void LeaveForGood();
    void Begin() { isLeft_ = false; }
    [[nodiscard]] bool IsLeft() const { return isLeft_; }

    // To be called after a flag of the state was changed that somebody may be waiting for.
    void Wake();

    // Waits until `done` answers true; it is asked again after each Wake().
    void WaitUntil(const std::function<bool()>& done);

  private:
    [[nodiscard]] bool MustWait(Work work) const;
    [[nodiscard]] bool MustLeave(Work work) const;
    [[nodiscard]] const std::atomic<bool>& SuspendedFlag(Worker worker) const;

    JobState* state_;
    std::mutex mutex_;
    std::condition_variable changed_;
    std::atomic<bool> repairSuspended_{false};
    std::atomic<bool> saveSuspended_{false};
    std::atomic<bool> isLeft_{false};
};

}  // namespace clipfix
