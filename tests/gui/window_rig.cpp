#include "gui/window_rig.h"

#include <QApplication>
#include <QTest>
#include <algorithm>

#include "shell/message_dlg.h"
#include "support/scripted_front_end.h"

namespace clipfix::test {

namespace {

constexpr int kPatience = 20000;  // milliseconds

constexpr std::array kMessageKeys{
    "IDS_CLOSE_DLG_MSG ", "IDS_CANCEL_DLG_MSG ", "IDS_REPAIR_ABORTED",  "IDS_REPAIR_PROCESSING",
    "IDS_SAVE_ABORTED",   "IDS_SAVE_COMPLETED",  "IDS_SAVE_PROCESSING", "IDS_UNHEALTHY_1",
    "IDS_MOVERROR4",      "IDS_ERROR9"};

QStringList Sorted(QStringList list) {
    list.sort();
    return list;
}

const QStringList kProgress{QStringLiteral("Animation"),
                            QStringLiteral("StatusText"),
                            QStringLiteral("ProgressBar"),
                            QStringLiteral("PercentText"),
                            QStringLiteral("StartTimeCaption"),
                            QStringLiteral("StartTimeValue"),
                            QStringLiteral("ElapsedTimeCaption"),
                            QStringLiteral("ElapsedTimeValue"),
                            QStringLiteral("Cancel")};

QStringList Names(const char* names) {
    return QString::fromLatin1(names).split(QStringLiteral(", "));
}

}  // namespace

namespace page {
const QStringList kHome = Names("AddFile, Hint");
const QStringList kChosenMov = Names("Repair, Back, SelectedText, CorruptedLabel");
const QStringList kChosenAvi = Names("Repair, Back, SelectedText, PathLabel");
const QStringList kNeedReference = Names(
    "ChooseReference, WhyHealthyLink, Repair (disabled), Back, CorruptedLabel, "
    "ReferenceText");
const QStringList kReferenceChosen =
    Names("ChooseReference, WhyHealthyLink, Repair, Back, CorruptedLabel, ReferenceText");
const QStringList kRepairingMov = kProgress + Names("Pause, SelectedText, CorruptedLabel");
const QStringList kRepairingWithReference =
    kProgress + Names("Pause, CorruptedLabel, ReferenceText");
const QStringList kRepairingAvi = kProgress + Names("Pause, SelectedText, PathLabel");
const QStringList kFinished = Names("DetailsGrid, PlayPicture, Home, Preview, Save");
const QStringList kSaving = kProgress + Names("PathLabel");
}  // namespace page

WindowRig::WindowRig(const QString& language)
    : texts(language), engines(work.filePath(QStringLiteral("$tp")).toStdString()) {
    CMainFrame::Settings settings;
    settings.programFolder = work.path().toStdString();
    settings.desktop = &desktop;
    settings.engines = &engines;
    settings.moveFile = [this](const std::string& source, const std::string& destination,
                               const platform::TransferProgress& progress) {
        while (moveStands) {
            if (!progress(1, 100)) {
                return Result<void>(Error{ErrorKind::Cancelled, "cancelled", {}});
            }
            QTest::qSleep(2);
        }
        return platform::MoveFileWithProgress(source, destination, progress);
    };
    frame = std::make_unique<CMainFrame>(state, texts.Get(), settings);
    (void)frame->Create();
    frame->show();
    frame->activateWindow();
    (void)QTest::qWaitForWindowActive(frame.get(), kPatience);
    connect(&watcher_, &QTimer::timeout, this, &WindowRig::AnswerDialog);
    watcher_.start(10);
}

WindowRig::~WindowRig() {
    moveStands = false;
}

void WindowRig::AnswerDialog() {
    auto* dialog = qobject_cast<CMessageDlg*>(QApplication::activeModalWidget());
    if (dialog == nullptr || answers_.empty() || !dialog->isVisible()) {
        return;
    }
    const QString text = dialog->findChild<CXStatic*>(QStringLiteral("61266"))->text();
    QString name = text;
    for (const char* key : kMessageKeys) {
        if (text == Word(key)) {
            name = QString::fromLatin1(key).trimmed();
            break;
        }
    }
    told_ << QString::number(dialog->Kind()) + QLatin1Char(' ') + name;
    const int id = answers_.front();
    answers_.pop_front();
    for (auto* button : dialog->findChildren<ControlButton*>(QString::number(id))) {
        if (button->isVisible()) {
            QTest::mouseClick(button, Qt::LeftButton);
            return;
        }
    }
    qFatal("no button %d in the message window", id);
}

void WindowRig::Click(int id) {
    for (auto* button : frame->findChildren<QAbstractButton*>(QString::number(id))) {
        if (button->isVisible() && button->isEnabled()) {
            QTest::mouseClick(button, Qt::LeftButton);
            return;
        }
    }
    QFAIL(qPrintable(QStringLiteral("no button %1").arg(id)));
}

void WindowRig::Press(Qt::Key key) const {
    QCoreApplication::processEvents();
    QWidget* target = frame->focusWidget() != nullptr ? frame->focusWidget() : frame.get();
    QTest::keyClick(target, key);
}

void WindowRig::AddFile(const QString& file) {
    desktop.filesToOpen.push_back(file.toStdString());
    Click(CXContainer::kAddFile);
}

void WindowRig::ChooseReference(const QString& file) {
    desktop.filesToOpen.push_back(file.toStdString());
    Click(CXContainer::kChooseReference);
}

void WindowRig::Repair(const QString& file, const QString& reference) {
    AddFile(file);
    Click(CXBottomSection::kRepair);
    if (!reference.isEmpty()) {
        QVERIFY(ComesTo(page::kNeedReference));
        ChooseReference(reference);
        Click(CXBottomSection::kRepair);
    }
    QVERIFY(ComesTo(page::kFinished));
}

QStringList WindowRig::Standing() const {
    QStringList standing;
    for (int i = 0; i <= static_cast<int>(JobControlId::PathLabel); ++i) {
        const auto control = static_cast<JobControlId>(i);
        for (const Section* section : frame->Sections()) {
            const QWidget* widget = section->Find(control);
            if (control != JobControlId::Title && widget != nullptr && widget->isVisible()) {
                standing << QString::fromStdString(NameOf(control)) +
                                (widget->isEnabled() ? QString() : QStringLiteral(" (disabled)"));
            }
        }
    }
    for (const auto* picture : frame->findChildren<CPictureEx*>()) {
        if (picture->isVisible()) {
            standing << QStringLiteral("Animation");
        }
    }
    return Sorted(standing);
}

bool WindowRig::ComesTo(QStringList standing) const {
    standing.sort();
    const bool came = QTest::qWaitFor([&] { return Standing() == standing; }, kPatience);
    if (!came) {
        qWarning() << "stands:" << Standing() << "awaited:" << standing;
    }
    return came;
}

QString WindowRig::TextOf(JobControlId control) const {
    for (const Section* section : frame->Sections()) {
        QWidget* widget = section->Find(control);
        if (const auto* label = qobject_cast<QLabel*>(widget)) {
            return label->text();
        }
        if (const auto* button = qobject_cast<QAbstractButton*>(widget)) {
            return button->text();
        }
    }
    return {};
}

QString WindowRig::WorkFile(const char* name) const {
    return work.filePath(QStringLiteral("$tp/") + QString::fromLatin1(name));
}

}  // namespace clipfix::test
