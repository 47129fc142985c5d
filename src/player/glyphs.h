#pragma once

#include <QColor>
#include <QRectF>

class QPainter;

namespace clipfix {

// The signs on the player's buttons. They are drawn and not loaded, so that they are sharp at
// every size and take any colour.
enum class Glyph {
    Play,
    Pause,
    PlayAgain,
    Backward,
    Forward,
    SoundOn,
    SoundLow,
    SoundOff,
    FullScreen,
    LeaveFullScreen,
    Film,   // for a notice about the file
    Sound,  // for a file without picture
};

// Draws the glyph into the middle of `target`, as large as fits a square there.
void DrawGlyph(QPainter& painter, Glyph glyph, const QRectF& target, const QColor& colour);

}  // namespace clipfix
