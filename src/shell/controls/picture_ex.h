#pragma once

#include <QImage>
#include <QTimer>
#include <QWidget>
#include <atomic>
#include <thread>
#include <vector>

namespace clipfix {

// An animated picture of the skin. Its frames are made on a thread of their own, sharp for the
// screen that it is on; until they are there it shows nothing. A stopped picture keeps the frame
// at which it stands.
class CPictureEx : public QWidget {
    Q_OBJECT

  public:
    static constexpr int kFrames = 48;
    static constexpr int kFrameMilliseconds = 40;

    CPictureEx(int id, QWidget* parent);
    CPictureEx(const CPictureEx&) = delete;
    CPictureEx& operator=(const CPictureEx&) = delete;
    ~CPictureEx() override;

    // Takes the skin's animated picture `picture` and begins to make its frames. False for a
    // number that no picture has.
    bool Load(int picture);
    // Starts, or goes on, from the frame at which it stands.
    void Start();
    void Stop();

    [[nodiscard]] bool IsRunning() const { return timer_.isActive(); }
    [[nodiscard]] int CurrentFrame() const { return frame_; }
    [[nodiscard]] bool IsLoaded() const { return !frames_.empty(); }
    // One tick of the animation.
    void OnTimer();

    [[nodiscard]] QSize sizeHint() const override { return {120, 120}; }

  protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

  private:
    void MakeFrames();
    void EndMaking();

    QString file_;
    QTimer timer_;
    int frame_ = 0;
    std::vector<QImage> frames_;
    qreal framesScale_ = 0;  // device pixels for a logical one, as the frames were made
    int making_ = 0;         // counts the makings, so that frames of an earlier one are dropped
    std::atomic<bool> stopMaking_{false};
    std::thread maker_;
};

}  // namespace clipfix
