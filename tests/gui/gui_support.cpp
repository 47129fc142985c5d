#include "gui/gui_support.h"

#include <QApplication>
#include <QEnterEvent>
#include <QFile>
#include <QTest>

#include "shell/controls/accessible_controls.h"
#include "shell/skin/fonts.h"
#include "shell/skin/pictures.h"

namespace clipfix::test {

namespace {

void Put(const QString& file, const QByteArray& text) {
    QFile out(file);
    if (!out.open(QIODevice::WriteOnly) || out.write(text) != text.size()) {
        qFatal("cannot write %s", qPrintable(file));
    }
}

TextPaths PathsWithLanguage(const QTemporaryDir& folder, const std::string& languageFolder,
                            const QString& language) {
    Put(folder.filePath(QStringLiteral("settings.ini")),
        "[Kelvo Clipfix Windows]\nIDS_LANGUAGE=" + language.toUtf8() + "\n");
    return {folder.filePath(QStringLiteral("settings.ini")).toStdString(), languageFolder};
}

}  // namespace

QStringList LanguageNames() {
    return {QStringLiteral("English"), QStringLiteral("French"),     QStringLiteral("German"),
            QStringLiteral("Italian"), QStringLiteral("Portuguese"), QStringLiteral("Spanish")};
}

void EachLanguage() {
    QTest::addColumn<QString>("language");
    for (const QString& language : LanguageNames()) {
        QTest::newRow(qPrintable(language)) << language;
    }
}

QStringList AllWords(const QString& language) {
    QFile file(QStringLiteral(CLIPFIX_LANG_FOLDER "/") + language + QStringLiteral(".ini"));
    if (!file.open(QIODevice::ReadOnly)) {
        qFatal("cannot read %s", qPrintable(file.fileName()));
    }
    QStringList words;
    for (const QString& line : QString::fromUtf8(file.readAll()).split(QLatin1Char('\n'))) {
        if (line.startsWith(QStringLiteral("IDS_"))) {
            words << line.section(QLatin1Char('='), 1).trimmed();
        }
    }
    return words;
}

LanguageTexts::LanguageTexts(const QString& language)
    : texts_(PathsWithLanguage(folder_, CLIPFIX_LANG_FOLDER, language)) {
    texts_.ReadSettings({});
}

OwnTexts::OwnTexts(const QByteArray& lines)
    : texts_(PathsWithLanguage(folder_, folder_.path().toStdString(), QStringLiteral("Own"))) {
    SetLines(lines);
    texts_.ReadSettings({});
}

void OwnTexts::SetLines(const QByteArray& lines) const {
    Put(folder_.filePath(QStringLiteral("Own.ini")), "[Kelvo Clipfix Windows]\n" + lines);
}

void PrepareLook(QApplication& application) {
    skin::LoadPictures();
    skin::ApplyLook(application);
    InstallAccessibleControls();
}

void Hover(QWidget& widget, bool on) {
    if (on) {
        const QPointF middle = QRectF(widget.rect()).center();
        QEnterEvent enter(middle, middle, widget.mapToGlobal(middle));
        QApplication::sendEvent(&widget, &enter);
    } else {
        QEvent leave(QEvent::Leave);
        QApplication::sendEvent(&widget, &leave);
    }
}

}  // namespace clipfix::test
