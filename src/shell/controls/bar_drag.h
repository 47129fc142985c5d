#pragma once

#include <QPoint>
#include <optional>

class QMouseEvent;
class QWidget;

namespace clipfix {

// Moves a window that has no caption by the bar that it draws itself. The desktop takes the move
// over once the mouse has been drawn a little way with its button down, and not at the press: a
// click that is over before the desktop has grabbed the mouse would leave the window hanging on it,
// and the second press of a double click would never arrive.
class BarDrag {
  public:
    // The left button went down, on the bar or elsewhere.
    void Press(const QMouseEvent& event, bool onBar);
    // The mouse moved over `window`.
    void Move(const QMouseEvent& event, const QWidget& window);
    // The button was let go.
    void Release() { start_.reset(); }

  private:
    std::optional<QPoint> start_;  // on the screen, while a drag may begin
};

}  // namespace clipfix
