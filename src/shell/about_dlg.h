#pragma once

#include <QDialog>

#include "shell/controls/x_static.h"
#include "text/texts.h"

class QGridLayout;
class QHBoxLayout;

namespace clipfix {

// Name, version and licence of the program, and what it is made with.
class CAboutDlg : public QDialog {
    Q_OBJECT

  public:
    static constexpr int kOk = 1;
    static constexpr int kFirstText = 61301;  // the texts count on from here, as they stand

    CAboutDlg(const Texts& texts, QWidget* parent);

  protected:
    void paintEvent(QPaintEvent* event) override;

  private:
    CXStatic* MakeText(const QString& words, int height, const char* face);
    QGridLayout* MakeTable();
    QHBoxLayout* MakeButtonRow(const QString& label);

    int nextText_ = kFirstText;
};

}  // namespace clipfix
