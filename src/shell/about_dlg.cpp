#include "shell/about_dlg.h"

#include <QHBoxLayout>
#include <QPainter>
#include <QVBoxLayout>

#include "shell/child.h"
#include "shell/controls/x_cmd_btn.h"
#include "shell/controls/x_static.h"
#include "shell/sections/section.h"
#include "shell/skin/fonts.h"
#include "shell/skin/pictures.h"

namespace clipfix {

namespace {

constexpr int kMargin = 28;
constexpr int kMarkSide = 72;
constexpr int kNameHeight = 30;
constexpr int kTextHeight = 19;

constexpr const char* kLicence =
    "This program is free software under the GNU General Public License, version 2 or any later "
    "version. It comes without any warranty.";
constexpr const char* kUsed =
    "It is made with FAAD2 (GNU GPL 2 or later), Qt 6 (GNU LGPL 3), libmpv in the preview player "
    "(GNU GPL 2 or later), {fmt}, CLI11 and JSON for Modern C++ on the command line (MIT and BSD "
    "licences).";

CXStatic* MakeLine(QWidget* parent, const QString& text, int height, const char* face) {
    auto* line = MakeChild<CXStatic>(0, parent);
    line->SetFace(QString::fromLatin1(face));
    line->SetHeight(height);
    line->setWordWrap(true);
    line->setText(text);
    return line;
}

}  // namespace

CAboutDlg::CAboutDlg(const Texts& texts, QWidget* parent)
    : QDialog(parent, Qt::Dialog | Qt::WindowTitleHint | Qt::WindowCloseButtonHint) {
    setObjectName(QStringLiteral("CAboutDlg"));
    setWindowTitle(WordOf(texts, "IDS_ABOUT"));
    auto* column = MakeChild<QVBoxLayout>(this);
    column->setContentsMargins(kMargin + kMarkSide + kMargin, kMargin, kMargin, kMargin);
    column->setSpacing(12);
    column->addWidget(
        MakeLine(this, QStringLiteral("Kelvo Clipfix"), kNameHeight, skin::kEmphasisFace));
    column->addWidget(MakeLine(
        this,
        WordOf(texts, "IDS_VERSION_TEXT") + QLatin1Char(' ') + QStringLiteral(CLIPFIX_VERSION),
        kTextHeight, skin::kFace));
    column->addWidget(MakeLine(this, QString::fromLatin1(kLicence), kTextHeight, skin::kFace));
    column->addWidget(MakeLine(this, QString::fromLatin1(kUsed), kTextHeight, skin::kFace));
    auto* row = MakeChild<QHBoxLayout>();
    column->addSpacing(8);
    column->addLayout(row);
    auto* ok = MakeChild<CXCmdBtn>(kOk, this);
    ok->setText(WordOf(texts, "IDS_OK"));
    ok->setFixedSize(ok->sizeHint());
    row->addStretch();
    row->addWidget(ok);
    connect(ok, &CXCmdBtn::clicked, this, &QDialog::accept);
    constexpr int kWidth = 600;
    setFixedSize(kWidth, column->heightForWidth(kWidth));
    ok->setFocus();
}

void CAboutDlg::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.fillRect(rect(), skin::Colour(skin::kSectionCentre));
    painter.drawPixmap(
        kMargin, kMargin,
        skin::Picture(skin::kMark, QSize(kMarkSide, kMarkSide), devicePixelRatioF()));
}

}  // namespace clipfix
