#include "gui/page_walk.h"

#include <QFile>
#include <QTest>

#include "shell/message_dlg.h"

namespace clipfix::test {

WalkedFilms MakeWalkedFilms(const WindowRig& rig, const QString& name) {
    WalkedFilms films{rig.work.filePath(name + QStringLiteral(".avi")),
                      rig.work.filePath(name + QStringLiteral(".mp4"))};
    QFile noise(films.movie);
    const QByteArray bytes(1000, 'x');
    if (!QFile::copy(QStringLiteral(CLIPFIX_EXAMPLES_FOLDER "/damaged.avi"), films.avi) ||
        !noise.open(QIODevice::WriteOnly) || noise.write(bytes) != bytes.size()) {
        qFatal("cannot write %s", qPrintable(films.movie));
    }
    return films;
}

void WalkPages(WindowRig& rig, const WalkedFilms& films,
               const std::function<void(const char* page)>& visit) {
    const auto arrive = [&](const char* name, const QStringList& standing) {
        if (!rig.ComesTo(standing)) {
            qFatal("the page %s is not reached", name);
        }
        visit(name);
    };
    arrive("60-home", page::kHome);
    rig.AddFile(films.movie);
    arrive("61-chosen-mov", page::kChosenMov);
    rig.Click(CXBottomSection::kRepair);
    arrive("62-need-reference", page::kNeedReference);
    rig.ChooseReference(films.movie);
    arrive("63-reference-chosen", page::kReferenceChosen);
    rig.Click(CXBottomSection::kBack);
    (void)rig.ComesTo(page::kHome);
    rig.AddFile(films.avi);
    arrive("64-chosen-avi", page::kChosenAvi);
    rig.engines.Hold();
    rig.Click(CXBottomSection::kRepair);
    (void)rig.ComesTo(page::kRepairingAvi);
    (void)QTest::qWaitFor([&] { return rig.engines.Rounds() > 0; });
    rig.state.g_nAviPercent = 42;
    rig.frame->Parts().driver.OnAviProgress();  // of a fresh job: empties the bar
    rig.frame->Parts().driver.OnAviProgress();
    arrive("65-repairing", page::kRepairingAvi);
    rig.Click(CXBottomSection::kPause);
    arrive("66-paused", page::kRepairingAvi);
    rig.Click(CXBottomSection::kPause);
    rig.engines.LetGo();
    arrive("67-finished", page::kFinished);
    rig.desktop.filesToSave.push_back((films.avi + QStringLiteral(".saved.avi")).toStdString());
    rig.moveStands = true;
    rig.Click(CXBottomSection::kSave);
    arrive("68-saving", page::kSaving);
    rig.AnswerNext(CMessageDlg::kOk);
    rig.moveStands = false;
    (void)rig.ComesTo(page::kHome);
}

}  // namespace clipfix::test
