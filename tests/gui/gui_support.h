#pragma once

#include <QString>
#include <QTemporaryDir>
#include <QWidget>
#include <string>

#include "text/texts.h"

class QApplication;

namespace clipfix::test {

// The six languages by the stems of their files.
[[nodiscard]] QStringList LanguageNames();

// The data of a test that runs in each of them: a column "language".
void EachLanguage();

// Every text of the shipped language file of `language`.
[[nodiscard]] QStringList AllWords(const QString& language);

// Texts that come from the shipped language file of `language`.
class LanguageTexts {
  public:
    explicit LanguageTexts(const QString& language);
    [[nodiscard]] Texts& Get() { return texts_; }
    [[nodiscard]] QString Word(const char* key) const {
        return QString::fromStdString(texts_.Text(key));
    }

  private:
    QTemporaryDir folder_;
    Texts texts_;
};

// Texts from a language file with these lines, which a test may change.
class OwnTexts {
  public:
    explicit OwnTexts(const QByteArray& lines);
    void SetLines(const QByteArray& lines) const;
    [[nodiscard]] Texts& Get() { return texts_; }

  private:
    QTemporaryDir folder_;
    Texts texts_;
};

// Loads the pictures and gives the application its look, as the start of the program does.
void PrepareLook(QApplication& application);

// Makes a control believe that the mouse is over it, or has left.
void Hover(QWidget& widget, bool on);

}  // namespace clipfix::test
