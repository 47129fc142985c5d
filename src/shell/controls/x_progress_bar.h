#pragma once

#include <QTimer>
#include <QWidget>

#include "job/state/job_state.h"

namespace clipfix {

// The bar of a repair or a save. Setting a position starts a timer of 20 ms that repaints until the
// drawn percent has reached it. What is drawn is not the position but the job's own percent: that
// of the save while one runs, else that of the MOV or the AVI job.
class CXProgressBar : public QWidget {
    Q_OBJECT

  public:
    static constexpr int kTimerMilliseconds = 20;

    // `state` must outlive the bar.
    CXProgressBar(int id, JobState& state, QWidget* parent);

    void SetPosition(int percent);
    // Position 0 and no timer. The next paint draws the job's percent as ever.
    void Reset();

    [[nodiscard]] int Position() const { return position_; }
    [[nodiscard]] int DrawnPercent() const { return drawn_; }
    // Length of the fill in logical pixels as it was last drawn, before the client's edge cuts it.
    [[nodiscard]] int DrawnLength() const { return drawnLength_; }
    [[nodiscard]] bool IsTimerRunning() const { return timer_.isActive(); }

    // One tick of the timer 100.
    void OnTimer();

    [[nodiscard]] QSize sizeHint() const override { return {450, 14}; }

  protected:
    void paintEvent(QPaintEvent* event) override;

  private:
    [[nodiscard]] int PercentOfTheJob() const;

    JobState* state_;
    QTimer timer_;
    int position_ = 0;
    int drawn_ = 0;
    int drawnLength_ = 0;
};

}  // namespace clipfix
