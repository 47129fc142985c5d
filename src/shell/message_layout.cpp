#include "shell/message_layout.h"

#include <algorithm>

namespace clipfix {

namespace {

constexpr int kWidth = 530;
constexpr int kHeight = 270;
constexpr int kTopBandEnd = 40;
constexpr int kBottomBandStart = 207;
constexpr int kColumnLeft = 125;
constexpr int kColumnRight = 520;
constexpr int kTextTop = 117;
constexpr int kTextBottom = 157;
constexpr int kSecondTextTop = 138;
constexpr int kSecondTextBottom = 159;
constexpr int kLinkRight = 190;
constexpr int kLinkGap = 4;       // between a link that is wider than its column and its text
constexpr int kLineGap = 7;       // between the text and the link's line
constexpr int kLowestText = 204;  // texts end here before the window grows

QRect FromEdges(int left, int top, int right, int bottom) {
    return QRect(QPoint(left, top), QSize(right - left, bottom - top));
}

int BesideLinkLeft(int linkWidth) {
    return std::max(kLinkRight, kColumnLeft + linkWidth + kLinkGap);
}

}  // namespace

int MessageLayout::BesideLinkWidth(int linkWidth) {
    return kColumnRight - BesideLinkLeft(linkWidth);
}

MessageLayout MessageLayout::Of(const Needs& needs) {
    MessageLayout at;
    at.closeBox = FromEdges(494, 8, 518, 32);
    at.picture = QRect(30, 89, 70, 62);
    at.title = FromEdges(kColumnLeft, 80, 515, 115);
    int textEnd = kTextTop + needs.text;
    at.text = FromEdges(kColumnLeft, kTextTop, kColumnRight, std::max(kTextBottom, textEnd));
    if (needs.secondText > 0) {
        // The second line stands at its place as long as the first takes one line only.
        const int top = std::max(kSecondTextTop, textEnd);
        at.text.setBottom(top - 1);
        textEnd = top + needs.secondText;
        at.secondText = FromEdges(kColumnLeft, top, kColumnRight,
                                  std::max(textEnd, top + kSecondTextBottom - kSecondTextTop));
    }
    if (needs.linkForm) {
        at.text.setHeight(needs.text);
        const int linkTop = textEnd + kLineGap;
        const int besideLeft = BesideLinkLeft(needs.linkWidth);
        at.link = QRect(kColumnLeft, linkTop, std::max(needs.linkWidth, 1), 0);
        at.besideLink = FromEdges(besideLeft, linkTop, kColumnRight, linkTop + needs.linkLine);
        at.belowLink = QRect(kColumnLeft, linkTop + needs.linkLine, kColumnRight - kColumnLeft,
                             needs.belowLink);
        at.link.setHeight(needs.linkLine);
        textEnd = linkTop + needs.linkLine + needs.belowLink;
    }

    const int growth = std::max(0, textEnd - kLowestText);
    at.window = QSize(kWidth, kHeight + growth);
    at.topBand = FromEdges(MessageLayout::kFrameWidth, MessageLayout::kFrameWidth,
                           kWidth - MessageLayout::kFrameWidth, kTopBandEnd);
    at.bottomBand = FromEdges(MessageLayout::kFrameWidth, kBottomBandStart + growth,
                              kWidth - MessageLayout::kFrameWidth,
                              kHeight + growth - MessageLayout::kFrameWidth);
    at.leftButton = FromEdges(228, 217 + growth, 349, 252 + growth);
    at.rightButton = FromEdges(372, 217 + growth, 493, 252 + growth);
    return at;
}

}  // namespace clipfix
