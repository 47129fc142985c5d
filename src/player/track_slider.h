#pragma once

#include <QSlider>

namespace clipfix {

// A slim slider: the part that has been passed is filled, a click goes straight to its place, and
// the handle appears under the mouse. Values in thousandths of a second or percent, as the owner
// sets the range.
class TrackSlider : public QSlider {
    Q_OBJECT

  public:
    explicit TrackSlider(QWidget* parent);

    // Follows the position, unless the person is holding the handle.
    void Follow(int value);
    // Sets the range to [0, end]; a value that no longer fits follows.
    void SetEnd(int end);

    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override;

    // The value that stands at `x` logical pixels from the left edge.
    [[nodiscard]] int ValueAt(qreal x) const;

  Q_SIGNALS:
    // The person has chosen a value. Comes again and again while the handle is dragged.
    void Chosen(int value);
    // The mouse is over the value, or has left (-1).
    void Hovered(int value, int x);

  protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void enterEvent(QEnterEvent* event) override;
    void leaveEvent(QEvent* event) override;

  private:
    [[nodiscard]] QRectF Groove() const;
    [[nodiscard]] qreal PlaceOf(int value) const;

    bool following_ = false;  // the value is being set by the player and not by the person
};

}  // namespace clipfix
