#include "shell/skin/fonts.h"

#include <QApplication>
#include <QFontDatabase>
#include <QFontMetrics>
#include <QFontMetricsF>
#include <QPalette>
#include <QProxyStyle>
#include <cmath>
#include <memory>

#include "shell/skin/palette.h"

namespace clipfix::skin {

namespace {

// The package of the window depends on this family.
constexpr const char* kFallbackFamily = "Open Sans";

bool IsInstalled(const QString& family) {
    // Asking the system anew for each text would be slow; fonts do not come and go in a run.
    static const QStringList kFamilies = QFontDatabase::families();
    return kFamilies.contains(family, Qt::CaseInsensitive);
}

// The buttons of the toolkit's own windows bear words alone, as those of the program do.
class PlainStyle final : public QProxyStyle {
  public:
    PlainStyle() : QProxyStyle(QStringLiteral("Fusion")) {}
    int styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                  QStyleHintReturn* data) const override {
        return hint == SH_DialogButtonBox_ButtonsHaveIcons
                   ? 0
                   : QProxyStyle::styleHint(hint, option, widget, data);
    }
};

// The family and weight that stand for a face on this system.
QFont FontOfFace(const QString& face) {
    if (IsInstalled(face)) {
        return QFont(face);
    }
    const bool emphasis = face.endsWith(QStringLiteral(" Semibold"));
    const QString plain = emphasis ? face.left(face.size() - 9) : face;
    QFont font(IsInstalled(plain)                  ? plain
               : IsInstalled(QLatin1String(kFace)) ? QString::fromLatin1(kFace)
                                                   : QString::fromLatin1(kFallbackFamily));
    font.setWeight(emphasis ? QFont::DemiBold : QFont::Normal);
    return font;
}

}  // namespace

QString DialogFace(bool majorVersion6) {
    return QString::fromLatin1(majorVersion6 ? kFace : kOlderDialogFace);
}

QFont FontOfHeight(const QString& face, int height) {
    QFont font = FontOfFace(face);
    font.setHintingPreference(QFont::PreferVerticalHinting);
    font.setPixelSize(std::max(height, 1));
    // Each line of a broken text takes whole pixels above and below its base line.
    const auto lineHeight = [](const QFont& measured) {
        const QFontMetricsF metrics(measured);
        return std::ceil(metrics.ascent()) + std::ceil(metrics.descent());
    };
    while (font.pixelSize() > 1 && lineHeight(font) > height) {
        font.setPixelSize(font.pixelSize() - 1);
    }
    return font;
}

QFont FontThatFits(const QString& face, int height, const QString& text, int width, int smallest) {
    QFont font = FontOfHeight(face, height);
    while (height > smallest && QFontMetrics(font).horizontalAdvance(text) > width) {
        font = FontOfHeight(face, --height);
    }
    return font;
}

void ApplyLook(QApplication& application) {
    QApplication::setStyle(std::make_unique<PlainStyle>().release());
    QPalette palette;
    palette.setColor(QPalette::Window, Colour(kSectionTop));
    palette.setColor(QPalette::WindowText, Colour(kText));
    palette.setColor(QPalette::Base, Colour(kSectionCentre));
    palette.setColor(QPalette::AlternateBase, Colour(kSectionTop));
    palette.setColor(QPalette::Text, Colour(kText));
    palette.setColor(QPalette::Button, Colour(kSectionTop));
    palette.setColor(QPalette::ButtonText, Colour(kText));
    palette.setColor(QPalette::ToolTipBase, Colour(kSectionCentre));
    palette.setColor(QPalette::ToolTipText, Colour(kText));
    palette.setColor(QPalette::Highlight, Colour(kLink));
    palette.setColor(QPalette::HighlightedText, Colour(kFaceText));
    palette.setColor(QPalette::Link, Colour(kLink));
    palette.setColor(QPalette::PlaceholderText, Colour(kDisabledText));
    for (const auto role : {QPalette::Text, QPalette::WindowText, QPalette::ButtonText}) {
        palette.setColor(QPalette::Disabled, role, Colour(kDisabledText));
    }
    application.setPalette(palette);
    QApplication::setFont(FontOfHeight(QString::fromLatin1(kFace), 19));
}

}  // namespace clipfix::skin
