#pragma once

#include "shell/controls/control_button.h"

namespace clipfix {

// A picture button with a hover look: the title bar's buttons, the message window's close box and
// the play picture. It has no label, so it must be given an accessible name.
class CButtonST : public ControlButton {
    Q_OBJECT

  public:
    // Takes the skin's picture `picture`, and the next number for hover and pressed.
    CButtonST(int id, int picture, const QString& name, QWidget* parent);

    void SetPicture(int picture);
    [[nodiscard]] int CurrentPicture() const;
    // What a screen reader and the tooltip say.
    void SetName(const QString& name);

  protected:
    void paintEvent(QPaintEvent* event) override;

  private:
    int picture_;
};

}  // namespace clipfix
