#include "shell/about_dlg.h"

#include <QGridLayout>
#include <QHBoxLayout>
#include <QPainter>
#include <QVBoxLayout>
#include <array>

#include "shell/child.h"
#include "shell/controls/x_cmd_btn.h"
#include "shell/sections/section.h"
#include "shell/skin/fonts.h"
#include "shell/skin/pictures.h"

namespace clipfix {

namespace {

constexpr int kWidth = 600;
constexpr int kMargin = 28;
constexpr int kMarkSide = 72;
constexpr int kNameHeight = 34;
constexpr int kTableHeight = 18;
constexpr int kTableGap = 28;  // between a component and its licence

// Names of products and short names of licences (SPDX) are the same in every language.
struct Component {
    const char* name;
    const char* licence;
};

constexpr std::array kComponents{
    Component{"Qt 6", "LGPL-3.0-only"},
    Component{"libmpv, FFmpeg", "GPL-2.0-or-later"},
    Component{"FAAD2", "GPL-2.0-or-later"},
    Component{"Boost", "BSL-1.0"},
    Component{"{fmt}", "MIT"},
    Component{"JSON for Modern C++", "MIT"},
    Component{"CLI11", "BSD-3-Clause"},
    Component{"Open Sans", "Apache-2.0"},
};

}  // namespace

CAboutDlg::CAboutDlg(const Texts& texts, QWidget* parent)
    : QDialog(parent, Qt::Dialog | Qt::WindowTitleHint | Qt::WindowCloseButtonHint) {
    setObjectName(QStringLiteral("CAboutDlg"));
    setWindowTitle(WordOf(texts, "IDS_ABOUT"));
    setAccessibleName(windowTitle());
    auto* column = MakeChild<QVBoxLayout>(this);
    column->setContentsMargins(kMargin + kMarkSide + kMargin, kMargin, kMargin, kMargin);
    column->setSpacing(0);
    column->addWidget(MakeText(QStringLiteral("Kelvo Clipfix"), kNameHeight, skin::kEmphasisFace));
    auto* version = MakeText(
        WordOf(texts, "IDS_VERSION_TEXT") + QLatin1Char(' ') + QStringLiteral(CLIPFIX_VERSION),
        skin::kTextHeight, skin::kFace);
    version->SetTextColour(skin::kQuietText);
    column->addWidget(version);
    for (const char* key : {"IDS_ABOUT_PURPOSE", "IDS_ABOUT_LICENCE"}) {
        column->addSpacing(skin::kTextHeight / 2);
        column->addWidget(MakeText(WordOf(texts, key), skin::kTextHeight, skin::kFace));
    }
    column->addSpacing(skin::kTextHeight);
    column->addWidget(
        MakeText(WordOf(texts, "IDS_ABOUT_COMPONENTS"), skin::kTextHeight, skin::kEmphasisFace));
    column->addSpacing(skin::kTextHeight / 4);
    column->addLayout(MakeTable());
    column->addSpacing(skin::kTextHeight);
    column->addLayout(MakeButtonRow(WordOf(texts, "IDS_OK")));
    setFixedSize(kWidth, column->totalHeightForWidth(kWidth));
}

CXStatic* CAboutDlg::MakeText(const QString& words, int height, const char* face) {
    auto* text = MakeChild<CXStatic>(nextText_++, this);
    text->SetFace(QString::fromLatin1(face));
    text->SetHeight(height);
    text->setWordWrap(true);
    text->setText(words);
    return text;
}

QGridLayout* CAboutDlg::MakeTable() {
    auto* table = MakeChild<QGridLayout>();
    table->setHorizontalSpacing(kTableGap);
    table->setVerticalSpacing(1);
    table->setColumnStretch(1, 1);
    int row = 0;
    for (const Component& component : kComponents) {
        auto* name = MakeText(QString::fromLatin1(component.name), kTableHeight, skin::kFace);
        auto* licence = MakeText(QString::fromLatin1(component.licence), kTableHeight, skin::kFace);
        name->setWordWrap(false);
        licence->SetTextColour(skin::kQuietText);
        table->addWidget(name, row, 0);
        table->addWidget(licence, row, 1);
        ++row;
    }
    return table;
}

QHBoxLayout* CAboutDlg::MakeButtonRow(const QString& label) {
    auto* ok = MakeChild<CXCmdBtn>(kOk, this);
    ok->setText(label);
    ok->setFixedSize(ok->sizeHint());
    connect(ok, &CXCmdBtn::clicked, this, &QDialog::accept);
    ok->setFocus();
    auto* row = MakeChild<QHBoxLayout>();
    row->addStretch();
    row->addWidget(ok);
    return row;
}

void CAboutDlg::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.fillRect(rect(), skin::Colour(skin::kSectionCentre));
    painter.drawPixmap(
        kMargin, kMargin,
        skin::Picture(skin::kMark, QSize(kMarkSide, kMarkSide), devicePixelRatioF()));
}

}  // namespace clipfix
