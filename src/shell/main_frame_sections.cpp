#include <QApplication>
#include <QKeyEvent>
#include <algorithm>

#include "shell/child.h"
#include "shell/main_frame.h"

// The three sections of the main window: made, placed, made anew; and which control the keyboard
// goes to.
namespace clipfix {

namespace {

// Heights of the top and the bottom section; the centre takes the rest.
constexpr int kTopSection = 88;
constexpr int kBottomSection = 92;

// The one obvious next step of each page, the first of these that stands there and can be used.
constexpr std::array kNextSteps{JobControlId::Save,    JobControlId::Repair,
                                JobControlId::AddFile, JobControlId::ChooseReference,
                                JobControlId::Pause,   JobControlId::Cancel};

}  // namespace

void CMainFrame::MakeSections() {
    top_ = MakeChild<CXTopSection>(parts_, this);
    container_ = MakeChild<CXContainer>(parts_, this);
    bottom_ = MakeChild<CXBottomSection>(parts_, this);
    connect(bottom_, &CXBottomSection::PreviewAsked, container_, &CXContainer::OnPreview);
    PlaceSections();
    PageChanged();
}

void CMainFrame::PlaceSections() {
    if (bottom_ == nullptr) {
        return;
    }
    const QRect area = SectionArea();
    const int centre = area.height() - kTopSection - kBottomSection;
    top_->setGeometry(area.left(), area.top(), area.width(), kTopSection);
    container_->setGeometry(area.left(), area.top() + kTopSection, area.width(), centre);
    bottom_->setGeometry(area.left(), area.top() + kTopSection + centre, area.width(),
                         kBottomSection);
}

// The sections are made anew by a command of one of their own buttons, which must live until its
// handler has come back: they leave the window at once, and are deleted by the event loop.
void CMainFrame::DropSections() {
    bottom_->StopAllTimers();
    nextStep_ = nullptr;
    for (Section* section : Sections()) {
        if (focusWidget() != nullptr && section->isAncestorOf(focusWidget())) {
            focusWidget()->clearFocus();
        }
        section->hide();
        section->setParent(nullptr);
        section->deleteLater();
    }
}

void CMainFrame::RebuildSections() {
    DropSections();
    MakeSections();
    for (Section* section : Sections()) {
        section->show();
    }
}

void CMainFrame::PageChanged() {
    pageChanged_.start(0);
}

void CMainFrame::FocusNextStep() {
    for (const auto control : kNextSteps) {
        for (const Section* section : Sections()) {
            QWidget* widget = section->Find(control);
            if (widget == nullptr || widget->isHidden() || !widget->isEnabled()) {
                continue;
            }
            const QWidget* focused = focusWidget();
            const bool lost = focused == nullptr || !focused->isVisibleTo(this);
            if (widget != nextStep_ || lost) {
                widget->setFocus(keyboardWasUsed_ ? Qt::OtherFocusReason : Qt::MouseFocusReason);
            }
            nextStep_ = widget;
            return;
        }
    }
    nextStep_ = nullptr;
}

// Notes whether the person uses the keyboard, so that its mark is shown to those only.
bool CMainFrame::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::KeyPress) {
        keyboardWasUsed_ = true;
    } else if (event->type() == QEvent::MouseButtonPress) {
        keyboardWasUsed_ = false;
    }
    return QWidget::eventFilter(watched, event);
}

void CMainFrame::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_F1) {
        OnCommand(kHelp);
        return;
    }
    QWidget::keyPressEvent(event);
}

}  // namespace clipfix
