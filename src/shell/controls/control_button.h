#pragma once

#include <QPushButton>

namespace clipfix {

// What the skin's buttons have in common: a numeric command id, the four looks, and keys. A button
// that has the keyboard is pressed by Space and by Enter, and shows that it has it unless it got
// it from the mouse. Its id is its object name, its text its accessible name.
class ControlButton : public QPushButton {
    Q_OBJECT

  public:
    enum class Look { Normal, Hover, Pressed, Disabled };

    ControlButton(int id, QWidget* parent);

    [[nodiscard]] int Id() const { return id_; }
    [[nodiscard]] Look CurrentLook() const;
    [[nodiscard]] bool ShowsFocus() const { return focusShown_ && hasFocus(); }

    // Whether a control that gets the keyboard for this reason shows that it has it: not when a
    // click gave it, and as before when the window or a menu gives it back.
    [[nodiscard]] static bool ShowsFocusFor(Qt::FocusReason reason, bool before);

  protected:
    void enterEvent(QEnterEvent* event) override;
    void leaveEvent(QEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;

  private:
    int id_;
    bool hovered_ = false;
    bool focusShown_ = false;
};

}  // namespace clipfix
