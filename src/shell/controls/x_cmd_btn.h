#pragma once

#include "shell/controls/control_button.h"
#include "shell/skin/palette.h"

namespace clipfix {

// The main command button: a face of the skin for each look, a label centred on it, a hand cursor.
class CXCmdBtn : public ControlButton {
    Q_OBJECT

  public:
    CXCmdBtn(int id, QWidget* parent);

    // Picture numbers of the four faces; the main ones until this is called.
    void SetFaces(int normal, int hover, int pressed, int disabled);
    // The face that is shown now.
    [[nodiscard]] int CurrentFace() const;
    // Height of the label's line in logical pixels. A label that is too wide is made smaller.
    void SetTextHeight(int height);

    // The font in which the label stands now.
    [[nodiscard]] QFont LabelFont() const;

    [[nodiscard]] QSize sizeHint() const override;

  protected:
    void paintEvent(QPaintEvent* event) override;

  private:
    int normal_;
    int hover_;
    int pressed_;
    int disabled_;
    int textHeight_ = 20;
};

}  // namespace clipfix
