#pragma once

#include <QLabel>
#include <optional>

#include "shell/skin/palette.h"

namespace clipfix {

// A text with settable colour, background, height and face. Its width follows its rectangle; a
// text is plain, never markup. Its id is its object name, its text its accessible name.
class CXStatic : public QLabel {
    Q_OBJECT

  public:
    CXStatic(int id, QWidget* parent);

    void SetTextColour(skin::ColourValue colour);
    // Nothing leaves the parent's background visible.
    void SetBackground(std::optional<skin::ColourValue> colour);
    // Height of a line in logical pixels, and the face's name.
    void SetHeight(int height);
    void SetFace(const QString& face);

    [[nodiscard]] skin::ColourValue TextColour() const { return colour_; }
    [[nodiscard]] int Height() const { return height_; }
    [[nodiscard]] QString Face() const { return face_; }

    // Logical pixels that the text takes when it is broken into lines of `width`.
    [[nodiscard]] int HeightOfText(int width) const;

  private:
    void UpdateFont();

    skin::ColourValue colour_ = skin::kText;
    int height_ = 20;
    QString face_;
};

}  // namespace clipfix
