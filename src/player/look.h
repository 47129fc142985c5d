#pragma once

#include <QColor>
#include <QFont>

class QApplication;

namespace clipfix::look {

// The colours of the main window's skin, so that the player looks like a part of it.
inline const QColor kText{0x4B, 0x4B, 0x4B};
inline const QColor kQuietText{0x6E, 0x74, 0x7A};
inline const QColor kPanel{0xF7, 0xF7, 0xF7};
inline const QColor kHover{0xE6, 0xEC, 0xF1};
inline const QColor kPressed{0xD6, 0xE0, 0xE8};
inline const QColor kSeparator{0xDC, 0xDC, 0xDC};
inline const QColor kTrough{0xD8, 0xDC, 0xE0};
inline const QColor kAccent{0x0C, 0x6F, 0xAD};
inline const QColor kAccentHover{0x12, 0x7F, 0xC4};
inline const QColor kAccentPressed{0x09, 0x57, 0x88};
inline const QColor kFill{0x00, 0x87, 0xEF};
inline const QColor kDisabled{0xA9, 0xB0, 0xB6};
inline const QColor kStage{0x00, 0x00, 0x00};
inline const QColor kNoticeStage{0x1B, 0x20, 0x25};
inline const QColor kNoticeText{0xF2, 0xF4, 0xF6};
inline const QColor kQuietNoticeText{0xB4, 0xBD, 0xC5};

// A font of the skin's face, or of the well-matching Open Sans, `pixels` logical pixels high.
[[nodiscard]] QFont Font(int pixels, bool emphasis = false);

// Gives the whole application the light look on which the colours rest, whatever the desktop's
// own theme is.
void Apply(QApplication& application);

}  // namespace clipfix::look
