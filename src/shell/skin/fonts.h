#pragma once

#include <QFont>
#include <QString>

class QApplication;

namespace clipfix::skin {

// Names of the faces as the window asks for them.
inline constexpr const char* kFace = "Segoe UI";
inline constexpr int kTextHeight = 20;  // of a line that is read, in logical pixels
inline constexpr const char* kEmphasisFace = "Segoe UI Semibold";
inline constexpr const char* kOlderDialogFace = "Trebuchet MS";

// The face of the dialogs: "Segoe UI" on a system of major version 6, else "Trebuchet MS".
[[nodiscard]] QString DialogFace(bool majorVersion6);

// A font of `face`, or of the well-matching "Open Sans" where the face is not installed, whose line
// (ascent and descent) is at most `height` logical pixels high and as close to it as can be.
[[nodiscard]] QFont FontOfHeight(const QString& face, int height);

// The same, made smaller until `text` fits into `width` logical pixels, down to a line of
// `smallest`.
[[nodiscard]] QFont FontThatFits(const QString& face, int height, const QString& text, int width,
                                 int smallest);

// Gives the whole application the calm light look on which the skin rests, whatever the desktop's
// own theme is: style, palette and font.
void ApplyLook(QApplication& application);

}  // namespace clipfix::skin
