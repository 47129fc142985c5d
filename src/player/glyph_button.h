#pragma once

#include <QAbstractButton>

#include "player/glyphs.h"

namespace clipfix {

// A button that shows a glyph: plain on the panel, or white on a disc of the accent colour. The
// keyboard reaches it by Tab; Space and Return press it, and every other key goes to the window.
class GlyphButton : public QAbstractButton {
    Q_OBJECT

  public:
    enum class Style { Plain, Disc };

    GlyphButton(Glyph glyph, Style style, QWidget* parent);

    // What stands on the button and what it is called, in the tooltip and for assistive tools; the
    // key that does the same is told in the tooltip.
    void SetMeaning(Glyph glyph, const QString& name, const QString& key = {});

    [[nodiscard]] Glyph CurrentGlyph() const { return glyph_; }
    [[nodiscard]] QSize sizeHint() const override;

  protected:
    void paintEvent(QPaintEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void enterEvent(QEnterEvent* event) override;
    void leaveEvent(QEvent* event) override;

  private:
    Glyph glyph_;
    Style style_;
};

}  // namespace clipfix
