#pragma once

#include <QWidget>

#include "player/glyphs.h"

class QLabel;

namespace clipfix {

// What stands in place of the picture when there is none: a sign, what has happened in one line,
// why in another, and the file it is about.
class NoticePane : public QWidget {
    Q_OBJECT

  public:
    explicit NoticePane(QWidget* parent);

    // `reason` and `path` may be empty.
    void Show(Glyph glyph, const QString& heading, const QString& reason, const QString& path);

    [[nodiscard]] QString Heading() const;
    [[nodiscard]] QString ReasonText() const;

  protected:
    void paintEvent(QPaintEvent* event) override;

  private:
    Glyph glyph_ = Glyph::Film;
    QWidget* sign_ = nullptr;
    QLabel* heading_ = nullptr;
    QLabel* reason_ = nullptr;
    QLabel* path_ = nullptr;
};

}  // namespace clipfix
