#include "job/state/job_control.h"

namespace clipfix {

bool JobControl::KeepGoing(Work work) {
    if (MustWait(work)) {
        std::unique_lock lock(mutex_);
        changed_.wait(lock, [&] { return !MustWait(work); });
    }
    return !MustLeave(work);
}

void JobControl::WaitWhileSuspended(Worker worker) {
    const auto& suspended = SuspendedFlag(worker);
    if (suspended) {
        std::unique_lock lock(mutex_);
        changed_.wait(lock, [&] { return !suspended; });
    }
}

void JobControl::TakeStep(Worker worker, const std::function<void()>& step) {
    const auto& suspended = SuspendedFlag(worker);
    std::unique_lock lock(mutex_);
    changed_.wait(lock, [&] { return !suspended; });
    step();
}

void JobControl::Suspend(Worker worker) {
    const std::lock_guard lock(mutex_);
    (worker == Worker::Repair ? repairSuspended_ : saveSuspended_) = true;
}

void JobControl::Resume(Worker worker) {
    {
        const std::lock_guard lock(mutex_);
        (worker == Worker::Repair ? repairSuspended_ : saveSuspended_) = false;
    }
    changed_.notify_all();
}

void JobControl::LeaveForGood() {
    {
        const std::lock_guard lock(mutex_);
        isLeft_ = true;
    }
    changed_.notify_all();
}

void JobControl::Wake() {
    // Taking the lock orders the change before the waiter's next look, so no wake is lost.
    { const std::lock_guard lock(mutex_); }
    changed_.notify_all();
}

void JobControl::WaitUntil(const std::function<bool()>& done) {
    std::unique_lock lock(mutex_);
    changed_.wait(lock, done);
}

bool JobControl::MustWait(Work work) const {
    if (SuspendedFlag(work == Work::Save ? Worker::Save : Worker::Repair)) {
        return true;
    }
    // A cancel resumes the worker while the pause flag still stands: the MOV engine then goes on
    // waiting here until the note of the cancel is closed and the cancel flag is set.
    return work == Work::MovEngine && state_->g_bRepairPaused != 0 &&
           state_->g_bRepairCancelled == 0 && !isLeft_;
}

bool JobControl::MustLeave(Work work) const {
    switch (work) {
        case Work::StructureCheck:
            return state_->g_lJobAlive == 0;  // set again by nothing but the next check
        case Work::MovEngine:
            return state_->g_bRepairCancelled != 0 || isLeft_;
        case Work::AviEngine:
            return state_->g_bAviContinue == 0 || isLeft_;
        case Work::Save:
            return state_->g_lSaveContinue == 0;
    }
    return true;
}

const std::atomic<bool>& JobControl::SuspendedFlag(Worker worker) const {
    return worker == Worker::Repair ? repairSuspended_ : saveSuspended_;
}

}  // namespace clipfix
