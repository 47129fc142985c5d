#pragma once

#include <QPixmap>
#include <QRectF>
#include <QString>

class QPainter;

namespace clipfix::skin {

// Numbers of the skin's pictures, by role.
inline constexpr int kCommandNormal = 900;
inline constexpr int kCommandHover = 901;
inline constexpr int kCommandPressed = 902;
inline constexpr int kCommandDisabled = 903;
inline constexpr int kQuietNormal = 904;  // the second button of a question
inline constexpr int kQuietHover = 905;

// Buttons of the title bar and of the details, a normal and a hover picture each.
inline constexpr int kClose = 400;
inline constexpr int kMinimise = 402;
inline constexpr int kMaximise = 404;
inline constexpr int kRestore = 406;
inline constexpr int kProgramMenu = 408;
inline constexpr int kHelpMenu = 410;
inline constexpr int kHome = 412;
inline constexpr int kPlay = 414;
inline constexpr int kMark = 416;  // the program's own mark; it has one look

inline constexpr int kHealthyFilm = 418;  // what the page of the reference asks for

inline constexpr int kQuestionPicture = 22916;
inline constexpr int kInformationPicture = 22926;
inline constexpr int kBusyRepair = 22906;
inline constexpr int kBusySave = 22907;

// Makes the pictures known to the program; to be called once before the first is drawn.
void LoadPictures();

// The vector file of a picture; empty for a number that no picture has.
[[nodiscard]] QString PictureFile(int id);

// The picture drawn anew for `size` (logical pixels) on a screen with `scale` device pixels for
// each, so that it is sharp at every scale. Null for an unknown number.
[[nodiscard]] QPixmap Picture(int id, QSize size, qreal scale);

// Draws a button's face over `target`: the corners keep their size, edges and middle stretch.
void DrawFace(QPainter& painter, const QRectF& target, int id);

// Draws the mark that shows which control has the keyboard, just inside `target`.
void DrawFocusMark(QPainter& painter, const QRectF& target, qreal radius);

}  // namespace clipfix::skin
