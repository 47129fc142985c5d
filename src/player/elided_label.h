#pragma once

#include <QLabel>

namespace clipfix {

// One line of plain text that is cut in its middle where it does not fit, so that both the
// beginning and the extension of a file name stay. The tooltip then holds all of it.
class ElidedLabel : public QLabel {
    Q_OBJECT

  public:
    explicit ElidedLabel(QWidget* parent);

    [[nodiscard]] QSize minimumSizeHint() const override;

  protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

  private:
    [[nodiscard]] QString Shown() const;
};

}  // namespace clipfix
