#include "shell/toolkit_texts.h"

#include <QCoreApplication>
#include <QLibraryInfo>
#include <QLocale>

#include "text/system_language.h"

namespace clipfix {

void ToolkitTexts::Use(std::string_view language) {
    QCoreApplication::removeTranslator(&translator_);
    const std::string_view code = LanguageCodeOf(language);
    const QLocale locale(QString::fromLatin1(code.data(), static_cast<int>(code.size())));
    if (translator_.load(locale, QStringLiteral("qtbase"), QStringLiteral("_"),
                         QLibraryInfo::path(QLibraryInfo::TranslationsPath))) {
        QCoreApplication::installTranslator(&translator_);
    }
}

}  // namespace clipfix
