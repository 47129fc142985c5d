#pragma once

#include <QRect>
#include <QSize>

namespace clipfix {

// Where everything in the message window stands, in logical pixels from its left upper corner.
// A window whose texts need more room than the settled size gives them grows downwards; bands and
// buttons below the texts move with its lower edge, so that no text is ever cut.
struct MessageLayout {
    // What the texts need when broken into the lines of their columns, in logical pixels.
    struct Needs {
        int text = 0;
        int secondText = 0;  // 0: no second text
        bool linkForm = false;
        int linkWidth = 0;
        int linkLine = 0;   // height of the link and of the text beside it
        int belowLink = 0;  // height of the text below
    };

    QSize window;
    QRect topBand;
    QRect bottomBand;
    QRect closeBox;
    QRect picture;
    QRect title;
    QRect text;
    QRect secondText;
    QRect link;
    QRect besideLink;
    QRect belowLink;
    QRect leftButton;   // 228 to 349
    QRect rightButton;  // 372 to 493

    static constexpr int kFrameWidth = 4;
    static constexpr int kTextColumnWidth = 395;  // 125 to 520
    // The width that is left for the text beside a link of `linkWidth`.
    [[nodiscard]] static int BesideLinkWidth(int linkWidth);
    [[nodiscard]] static MessageLayout Of(const Needs& needs);
};

}  // namespace clipfix
