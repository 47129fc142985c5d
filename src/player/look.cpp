#include "player/look.h"

#include <QApplication>
#include <QFontDatabase>
#include <QPalette>
#include <QStyleFactory>

namespace clipfix::look {

namespace {

constexpr int kTextPixels = 14;

QString InstalledFamily() {
    const QStringList installed = QFontDatabase::families();
    for (const char* family : {"Segoe UI", "Open Sans", "Noto Sans", "DejaVu Sans"}) {
        QString name = QString::fromLatin1(family);
        if (installed.contains(name, Qt::CaseInsensitive)) {
            return name;
        }
    }
    return QFont().family();
}

}  // namespace

QFont Font(int pixels, bool emphasis) {
    // Fonts do not come and go in a run, and asking for each text would be slow.
    static const QString kFamily = InstalledFamily();
    QFont font(kFamily);
    font.setPixelSize(pixels);
    font.setWeight(emphasis ? QFont::DemiBold : QFont::Normal);
    font.setHintingPreference(QFont::PreferVerticalHinting);
    return font;
}

void Apply(QApplication& application) {
    QApplication::setStyle(QStyleFactory::create(QStringLiteral("Fusion")));
    QPalette palette;
    palette.setColor(QPalette::Window, kPanel);
    palette.setColor(QPalette::WindowText, kText);
    palette.setColor(QPalette::Base, Qt::white);
    palette.setColor(QPalette::Text, kText);
    palette.setColor(QPalette::Button, kPanel);
    palette.setColor(QPalette::ButtonText, kText);
    palette.setColor(QPalette::ToolTipBase, Qt::white);
    palette.setColor(QPalette::ToolTipText, kText);
    palette.setColor(QPalette::Highlight, kAccent);
    palette.setColor(QPalette::HighlightedText, Qt::white);
    application.setPalette(palette);
    QApplication::setFont(Font(kTextPixels));
}

}  // namespace clipfix::look
