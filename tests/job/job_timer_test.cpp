#include <gtest/gtest.h>

#include "job_rig.h"

// The clock of a job, with a clock that the test moves by hand.
namespace clipfix::test {
namespace {

const std::string kStart = "StartTimeValue =  05:03:09";

// Flags as they stand while an engine works; the timer reads nothing else.
class RunningClock : public ::testing::Test {
  protected:
    RunningClock() {
        rig.state.g_bRepairRunning = 1;
        rig.state.g_tStart = kTestNow;
        rig.state.g_bAnimationStopped = 1;
    }
    // What one tick writes.
    Lines Tick() {
        rig.log.Clear();
        rig.driver.OnTimer(kClockTimer);
        return rig.log.All();
    }
    // As many ticks as seconds pass.
    void Pass(int seconds) {
        for (int i = 0; i < seconds; ++i) {
            rig.clock.Advance(1);
            rig.driver.OnTimer(kClockTimer);
        }
    }
    JobRig rig;
};

TEST_F(RunningClock, ShowsStartAndElapsedTimeOnEveryTick) {
    EXPECT_EQ(Tick(), (Lines{kStart, "ElapsedTimeValue =  00:00:00"}));
    rig.clock.Advance(61);
    EXPECT_EQ(Tick(), (Lines{kStart, "ElapsedTimeValue =  00:01:01"}));
}

TEST_F(RunningClock, StandsWithoutAJob) {
    rig.state.g_bRepairRunning = 0;
    EXPECT_EQ(Tick(), Lines{});
    rig.state.g_bRepairPaused = 1;
    rig.clock.Advance(5);
    EXPECT_EQ(Tick(), Lines{});
    EXPECT_EQ(rig.state.g_tsPaused, 0);
}

TEST_F(RunningClock, RunsDuringASaveAsWell) {
    rig.state.g_bRepairRunning = 0;
    rig.state.g_bSaveRunning = 1;
    rig.clock.Advance(2);
    EXPECT_EQ(Tick(), (Lines{kStart, "ElapsedTimeValue =  00:00:02"}));
}

TEST_F(RunningClock, IsNotMovedByAnotherTimer) {
    rig.log.Clear();
    rig.driver.OnTimer(kSaveTimer);
    EXPECT_EQ(rig.log.All(), Lines{});
}

TEST_F(RunningClock, WrapsAtADay) {
    rig.clock.Advance(24 * 3600 + 3661);
    EXPECT_EQ(Tick(), (Lines{kStart, "ElapsedTimeValue =  01:01:01"}));
}

TEST_F(RunningClock, LeavesTenPausedMinutesOutAndTheStartTimeAlone) {
    Pass(5);
    rig.driver.OnPauseResume();
    Pass(600);
    EXPECT_EQ(Tick(), Lines{}) << "nothing is drawn during a pause";
    EXPECT_EQ(rig.state.g_tsPaused, 600);
    rig.driver.OnPauseResume();
    rig.clock.Advance(1);
    EXPECT_EQ(Tick(), (Lines{kStart, "ElapsedTimeValue =  00:00:06"}));
    EXPECT_EQ(rig.state.g_tsPausedTotal, 600);
    EXPECT_EQ(rig.state.g_nPauseAccounted, 1);
}

TEST_F(RunningClock, AddsUpItsPauses) {
    Pass(5);
    rig.driver.OnPauseResume();
    Pass(10);
    rig.driver.OnPauseResume();
    Pass(5);
    rig.driver.OnPauseResume();
    Pass(20);
    rig.driver.OnPauseResume();
    Pass(4);
    EXPECT_EQ(rig.state.g_tsPaused, 30);
    rig.clock.Advance(1);
    EXPECT_EQ(Tick(), (Lines{kStart, "ElapsedTimeValue =  00:00:15"}));
}

TEST_F(RunningClock, DoesNotNoticeAPauseWithoutATickInIt) {
    Pass(5);
    rig.driver.OnPauseResume();
    rig.driver.OnPauseResume();
    EXPECT_EQ(rig.state.g_tsPaused, 0);
    rig.clock.Advance(1);
    EXPECT_EQ(Tick(), (Lines{kStart, "ElapsedTimeValue =  00:00:06"}));
}

// The span stays as it stood at the last tick, and the next tick folds the total in once more.
// That follows from the rule and is meant.
TEST_F(RunningClock, CountsAnEarlierPauseTwiceAfterAPauseWithoutATickInIt) {
    rig.driver.OnPauseResume();
    Pass(10);
    rig.driver.OnPauseResume();
    Pass(5);
    EXPECT_EQ(rig.state.g_tsPaused, 10);
    rig.driver.OnPauseResume();
    rig.driver.OnPauseResume();
    EXPECT_EQ(rig.state.g_tsPaused, 10);
    rig.clock.Advance(5);
    EXPECT_EQ(Tick(), (Lines{kStart, "ElapsedTimeValue =  00:00:00"}));
    EXPECT_EQ(rig.state.g_tsPaused, 20);
}

// The labels stand while a dialog is up, and jump at the first tick after it: its seconds count.
TEST_F(RunningClock, StandsBehindADialogAndThenJumps) {
    Pass(5);
    rig.state.g_nMessageKind = 4;
    rig.clock.Advance(30);
    EXPECT_EQ(Tick(), Lines{});
    EXPECT_EQ(rig.state.g_tsPaused, 0);
    rig.state.g_nMessageKind = 0;
    rig.clock.Advance(1);
    EXPECT_EQ(Tick(), (Lines{kStart, "ElapsedTimeValue =  00:00:36"}));
}

TEST_F(RunningClock, CountsTheSpanOfAPauseBehindADialogToo) {
    rig.driver.OnPauseResume();
    rig.state.g_nMessageKind = 2;
    Pass(3);
    EXPECT_EQ(rig.state.g_tsPaused, 3);
}

TEST(HomeTimer, LeadsHome) {
    JobRig rig;
    rig.FinishMovJob();
    rig.log.Clear();
    rig.driver.OnTimer(kHomeTimer);
    EXPECT_EQ(rig.log.All(), Join({{"stop timer 1", "rebuild sections"}, kHomeState}));
}

TEST(FormatClock, BeginsWithABlankAndPads) {
    EXPECT_EQ(FormatClock({.hour = 5, .minute = 3, .second = 9}), " 05:03:09");
    EXPECT_EQ(FormatClock({.hour = 23, .minute = 59, .second = 59}), " 23:59:59");
}

TEST(FormatSpan, ShowsTheHoursWithinADay) {
    EXPECT_EQ(FormatSpan(0), " 00:00:00");
    EXPECT_EQ(FormatSpan(86399), " 23:59:59");
    EXPECT_EQ(FormatSpan(86400), " 00:00:00");
    EXPECT_EQ(FormatSpan(90061), " 01:01:01");
}

TEST(SystemClock, TellsSecondsSinceTheEpochAndLocalTime) {
    SystemClock clock;
    EXPECT_GT(clock.Now(), 1600000000);
    const LocalTime time = clock.ToLocalTime(clock.Now());
    EXPECT_GE(time.year, 2020);
    EXPECT_GE(time.month, 1);
    EXPECT_LE(time.month, 12);
}

}  // namespace
}  // namespace clipfix::test
