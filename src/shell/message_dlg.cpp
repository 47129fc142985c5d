#include "shell/message_dlg.h"

#include <QCloseEvent>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <algorithm>
#include <array>

#include "job/state/job_front_end.h"
#include "shell/child.h"
#include "shell/interface_thread.h"
#include "shell/skin/fonts.h"
#include "shell/skin/pictures.h"

namespace clipfix {

namespace {

// Texts that bring the form with a link. The comparison is by text: another note whose words are
// the same in some language file gets the link as well.
constexpr std::array kLinkFormKeys{"IDS_UNHEALTHY_1", "IDS_MOVERROR1", "IDS_MOVERROR2",
                                   "IDS_MOVERROR3",   "IDS_MOVERROR4", "IDS_AVIERROR1",
                                   "IDS_AVIERROR2",   "IDS_AVIERROR3", "IDS_AVIERROR5"};
constexpr int kTitleHeight = 35;
constexpr int kNoSpaceKind = 5;

}  // namespace

CMessageDlg::CMessageDlg(JobState& state, const Texts& texts, const QString& text,
                         const QString& title, const QString& firstLabel,
                         const QString& secondLabel, QWidget* parent)
    : QDialog(parent, Qt::Dialog | Qt::FramelessWindowHint),
      state_(&state),
      texts_(&texts),
      kind_(state.g_nMessageKind),
      text_(text),
      title_(title),
      firstLabel_(firstLabel),
      secondLabel_(secondLabel) {
    setObjectName(QStringLiteral("CMessageDlg"));
    setWindowTitle(title);
    setAccessibleName(title);
    setAccessibleDescription(text);
    setModal(true);
    MakeTexts();
    Arrange();
    MakeButtons();
}

void CMessageDlg::Run(JobState& state, const Texts& texts, const QString& text,
                      const QString& title, const QString& firstLabel, const QString& secondLabel,
                      QWidget* parent, const QUrl& linkTarget) {
    RunOnInterfaceThread([&] {
        CMessageDlg dialog(state, texts, text, title, firstLabel, secondLabel, parent);
        if (dialog.link_ != nullptr) {
            dialog.link_->SetTarget(linkTarget);
        }
        (void)dialog.exec();
    });
}

QString CMessageDlg::WordOf(const char* key) const {
    return QString::fromStdString(texts_->Text(key, kMessageTextSize));
}

bool CMessageDlg::TextAsksForLink() const {
    return !IsQuestion() &&
           std::any_of(kLinkFormKeys.begin(), kLinkFormKeys.end(), [this](const char* key) {
               return text_.compare(WordOf(key), Qt::CaseInsensitive) == 0;
           });
}

CXStatic* CMessageDlg::MakeText(int id, const QString& words, int height) {
    auto* made = MakeChild<CXStatic>(id, this);
    made->SetFace(skin::DialogFace(state_->g_bMajorVersion6 == 1));
    made->SetHeight(height);
    made->SetTextColour(skin::kText);
    made->setAlignment(Qt::AlignLeft | Qt::AlignTop);
    made->setWordWrap(true);
    made->setText(words);
    return made;
}

void CMessageDlg::MakeTexts() {
    titleText_ = MakeText(kTitleText, title_, kTitleHeight);
    titleText_->setWordWrap(false);
    messageText_ = MakeText(kMessageText, text_, skin::kTextHeight);
    if (TextAsksForLink()) {
        link_ = MakeChild<CHyperLink>(kLink, this);
        link_->SetFace(skin::DialogFace(state_->g_bMajorVersion6 == 1));
        link_->SetHeight(skin::kTextHeight);
        link_->SetColours(skin::kLink, skin::kLink, skin::kLink);
        link_->SetBackground(skin::kSectionCentre);
        link_->setText(WordOf("IDS_CLICK_HERE"));
        connect(link_, &CHyperLink::clicked, this, [this] { OnCommand(kLink); });
        secondText_ = MakeText(kSecondText, WordOf("IDS_CLICK_HERE_1"), skin::kTextHeight);
        belowLinkText_ = MakeText(kBelowLinkText, WordOf("IDS_CLICK_HERE_2"), skin::kTextHeight);
    } else if (kind_ == kNoSpaceKind) {
        secondText_ = MakeText(kSecondText, WordOf("IDS_ERROR10"), skin::kTextHeight);
    }
}

// Measures the texts and puts everything at its place.
void CMessageDlg::Arrange() {
    MessageLayout::Needs needs;
    needs.text = messageText_->HeightOfText(MessageLayout::kTextColumnWidth);
    if (link_ != nullptr) {
        needs.linkForm = true;
        needs.linkWidth = link_->sizeHint().width();
        const int beside = MessageLayout::BesideLinkWidth(needs.linkWidth);
        needs.linkLine = std::max(link_->sizeHint().height(), secondText_->HeightOfText(beside));
        needs.belowLink = belowLinkText_->HeightOfText(MessageLayout::kTextColumnWidth);
    } else if (secondText_ != nullptr) {
        needs.secondText = secondText_->HeightOfText(MessageLayout::kTextColumnWidth);
    }
    layout_ = MessageLayout::Of(needs);
    setFixedSize(layout_.window);
    titleText_->setGeometry(layout_.title);
    titleText_->setFont(skin::FontThatFits(titleText_->Face(), kTitleHeight, title_,
                                           layout_.title.width(), skin::kTextHeight));
    messageText_->setGeometry(layout_.text);
    if (link_ != nullptr) {
        const QRect line(layout_.link.topLeft(),
                         QSize(layout_.link.width(), link_->sizeHint().height()));
        link_->setGeometry(line);
        secondText_->setGeometry(layout_.besideLink);
        belowLinkText_->setGeometry(layout_.belowLink);
    } else if (secondText_ != nullptr) {
        secondText_->setGeometry(layout_.secondText);
    }
}

CXCmdBtn* CMessageDlg::MakeButton(int id, const char* key, const QRect& place, bool quiet) {
    auto* button = MakeChild<CXCmdBtn>(id, this);
    button->setText(WordOf(key));
    button->setGeometry(place);
    if (quiet) {
        button->SetFaces(skin::kQuietNormal, skin::kQuietHover, skin::kCommandPressed,
                         skin::kCommandDisabled);
    }
    connect(button, &CXCmdBtn::clicked, this, [this, id] { OnCommand(id); });
    return button;
}

void CMessageDlg::MakeButtons() {
    if (IsQuestion()) {
        firstFocus_ = MakeButton(kYes, "IDS_YES", layout_.leftButton, false);
        (void)MakeButton(kNo, "IDS_NO", layout_.rightButton, true);
    } else if (link_ != nullptr) {
        // The filled face stands for the way on, which is Cancel here.
        firstFocus_ = MakeButton(kOk, "IDS_CANCEL", layout_.leftButton, false);
        (void)MakeButton(kShare, "IDS_SHARE", layout_.rightButton, true);
        MakeButton(kOk, "IDS_OK", layout_.rightButton, false)->hide();
    } else {
        firstFocus_ = MakeButton(kOk, "IDS_OK", layout_.rightButton, false);
    }
    closeBox_ = MakeChild<CButtonST>(kCloseBox, skin::kClose, WordOf("IDS_CLOSE"), this);
    closeBox_->setGeometry(layout_.closeBox);
    connect(closeBox_, &CButtonST::clicked, this, [this] { OnCommand(kCloseBox); });
}

void CMessageDlg::OnCommand(int id) {
    switch (id) {
        case kYes:
            Leave(true, true);
            break;
        case kNo:
        case kOk:
        case kCloseBox:
            Leave(true, false);
            break;
        case kLeave:
            Leave(false, false);
            break;
        default:
            // The button Share (348) is shown and has no handler; it is meant so.
            break;
    }
}

// Every way out goes through here. The command 8 leaves the answer as it was.
void CMessageDlg::Leave(bool answered, bool yes) {
    const int earlier = state_->g_bMessageYes;
    CloseMessage(*state_, yes ? MessageAnswer::Yes : MessageAnswer::No);
    if (!answered) {
        state_->g_bMessageYes = earlier;
    }
    done(yes ? QDialog::Accepted : QDialog::Rejected);
}

void CMessageDlg::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.fillRect(rect(), skin::Colour(skin::kSectionCentre));
    painter.fillRect(layout_.topBand, skin::Colour(skin::kBand));
    painter.fillRect(layout_.bottomBand, skin::Colour(skin::kBand));
    painter.setPen(QPen(skin::Colour(skin::kFrame), MessageLayout::kFrameWidth, Qt::SolidLine,
                        Qt::SquareCap, Qt::MiterJoin));
    painter.drawRect(QRectF(rect()).adjusted(
        MessageLayout::kFrameWidth / 2.0, MessageLayout::kFrameWidth / 2.0,
        -MessageLayout::kFrameWidth / 2.0, -MessageLayout::kFrameWidth / 2.0));
    const int picture = IsQuestion() ? skin::kQuestionPicture : skin::kInformationPicture;
    painter.drawPixmap(layout_.picture.topLeft(),
                       skin::Picture(picture, layout_.picture.size(), devicePixelRatioF()));
    titleText_->setText(title_);
    messageText_->setText(text_);
    state_->g_bMessageOpen = 1;
}

void CMessageDlg::closeEvent(QCloseEvent* event) {
    // The system's close command is swallowed: the window can only be left by a button.
    event->ignore();
}

void CMessageDlg::keyPressEvent(QKeyEvent* event) {
    // Enter and Escape belong to the control that has the keyboard; here they are no commands.
    event->ignore();
}

void CMessageDlg::mousePressEvent(QMouseEvent* event) {
    // There is no caption bar: the upper band moves the window.
    drag_.Press(*event, layout_.topBand.contains(event->pos()));
}

void CMessageDlg::mouseMoveEvent(QMouseEvent* event) {
    drag_.Move(*event, *this);
}

void CMessageDlg::mouseReleaseEvent(QMouseEvent* /*event*/) {
    drag_.Release();
}

void CMessageDlg::showEvent(QShowEvent* event) {
    QDialog::showEvent(event);
    if (parentWidget() != nullptr) {
        const QRect owner = parentWidget()->window()->frameGeometry();
        move(owner.center() - rect().center());
    }
    firstFocus_->setFocus(Qt::OtherFocusReason);
}

}  // namespace clipfix
