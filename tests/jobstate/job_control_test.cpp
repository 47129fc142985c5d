#include "job/state/job_control.h"

#include <chrono>
#include <future>
#include <gtest/gtest.h>

#include "job/state/job_front_end.h"

namespace clipfix {
namespace {

using Work = JobControl::Work;
using Worker = JobControl::Worker;
using namespace std::chrono_literals;

TEST(JobControl, LeavesEachKindOfWorkByItsOwnFlag) {
    JobState state;
    JobControl control(state);
    EXPECT_FALSE(control.KeepGoing(Work::StructureCheck));
    EXPECT_FALSE(control.KeepGoing(Work::AviEngine));
    EXPECT_FALSE(control.KeepGoing(Work::Save));
    EXPECT_TRUE(control.KeepGoing(Work::MovEngine));
    state.g_lJobAlive = 1;
    state.g_bAviContinue = 1;
    state.g_lSaveContinue = 1;
    state.g_bRepairCancelled = 1;
    EXPECT_TRUE(control.KeepGoing(Work::StructureCheck));
    EXPECT_TRUE(control.KeepGoing(Work::AviEngine));
    EXPECT_TRUE(control.KeepGoing(Work::Save));
    EXPECT_FALSE(control.KeepGoing(Work::MovEngine));
}

TEST(JobControl, HoldsASuspendedWorkerUntilItIsResumed) {
    JobState state;
    state.g_bAviContinue = 1;
    JobControl control(state);
    control.Suspend(Worker::Repair);
    auto answer =
        std::async(std::launch::async, [&] { return control.KeepGoing(Work::AviEngine); });
    EXPECT_EQ(answer.wait_for(30ms), std::future_status::timeout);
    control.Resume(Worker::Repair);
    EXPECT_TRUE(answer.get());
}

TEST(JobControl, DoesNotHoldASaveForASuspendedRepair) {
    JobState state;
    state.g_lSaveContinue = 1;
    JobControl control(state);
    control.Suspend(Worker::Repair);
    EXPECT_TRUE(control.KeepGoing(Work::Save));
}

TEST(JobControl, KeepsAResumedMovEngineWaitingWhileThePauseFlagStands) {
    JobState state;
    state.g_bRepairPaused = 1;
    JobControl control(state);
    control.Suspend(Worker::Repair);
    auto answer =
        std::async(std::launch::async, [&] { return control.KeepGoing(Work::MovEngine); });
    control.Resume(Worker::Repair);
    EXPECT_EQ(answer.wait_for(30ms), std::future_status::timeout);
    state.g_bRepairCancelled = 1;
    control.Wake();
    EXPECT_FALSE(answer.get());
}

TEST(JobControl, KeepsAnEngineLeftUntilTheNextJobBegins) {
    JobState state;
    state.g_bAviContinue = 1;
    state.g_lJobAlive = 1;
    state.g_lSaveContinue = 1;
    JobControl control(state);
    control.LeaveForGood();
    EXPECT_FALSE(control.KeepGoing(Work::AviEngine));
    EXPECT_FALSE(control.KeepGoing(Work::MovEngine));
    EXPECT_TRUE(control.KeepGoing(Work::StructureCheck));
    EXPECT_TRUE(control.KeepGoing(Work::Save));
    control.Begin();
    EXPECT_TRUE(control.KeepGoing(Work::AviEngine));
    EXPECT_TRUE(control.KeepGoing(Work::MovEngine));
}

TEST(JobControl, WakesAPausedMovEngineThatIsToLeaveForGood) {
    JobState state;
    state.g_bRepairPaused = 1;
    JobControl control(state);
    auto answer =
        std::async(std::launch::async, [&] { return control.KeepGoing(Work::MovEngine); });
    EXPECT_EQ(answer.wait_for(30ms), std::future_status::timeout);
    control.LeaveForGood();
    EXPECT_FALSE(answer.get());
}

TEST(JobControl, PausesTheOtherKindsOfWorkBySuspensionAlone) {
    JobState state;
    state.g_bRepairPaused = 1;
    state.g_bAviContinue = 1;
    state.g_lJobAlive = 1;
    JobControl control(state);
    EXPECT_TRUE(control.KeepGoing(Work::AviEngine));
    EXPECT_TRUE(control.KeepGoing(Work::StructureCheck));
}

TEST(JobControl, TakesAStepOnlyWhenTheWorkerIsNotSuspended) {
    JobState state;
    JobControl control(state);
    std::atomic<bool> taken{false};
    control.Suspend(Worker::Repair);
    auto step = std::async(std::launch::async,
                           [&] { control.TakeStep(Worker::Repair, [&] { taken = true; }); });
    EXPECT_EQ(step.wait_for(30ms), std::future_status::timeout);
    EXPECT_FALSE(taken);
    control.Resume(Worker::Repair);
    step.get();
    EXPECT_TRUE(taken);
}

TEST(JobControl, WakesWhoWaitsForTheStateToChange) {
    JobState state;
    state.g_bMessageYes = 1;
    JobControl control(state);
    auto waited = std::async(std::launch::async, [&] {
        control.WaitUntil([&] { return state.g_bMessageYes == 0; });
        return true;
    });
    EXPECT_EQ(waited.wait_for(30ms), std::future_status::timeout);
    state.g_nMessageKind = 3;
    CloseMessage(state, MessageAnswer::Ok);
    control.Wake();
    EXPECT_TRUE(waited.get());
    EXPECT_EQ(state.g_nMessageKind, 0);
}

TEST(CloseMessage, KeepsTheAnswerOfAQuestion) {
    JobState state;
    state.g_nMessageKind = 2;
    state.g_bMessageOpen = 1;
    CloseMessage(state, MessageAnswer::Yes);
    EXPECT_EQ(state.g_bMessageYes, 1);
    EXPECT_EQ(state.g_nMessageKind, 0);
    EXPECT_EQ(state.g_bMessageOpen, 0);
    CloseMessage(state, MessageAnswer::No);
    EXPECT_EQ(state.g_bMessageYes, 0);
}

}  // namespace
}  // namespace clipfix
