#pragma once

#include <QDialog>

#include "text/texts.h"

namespace clipfix {

// Name, version and licence of the program, and the licences of what it is made with.
class CAboutDlg : public QDialog {
    Q_OBJECT

  public:
    static constexpr int kOk = 1;

    CAboutDlg(const Texts& texts, QWidget* parent);

  protected:
    void paintEvent(QPaintEvent* event) override;
};

}  // namespace clipfix
