#include <QApplication>
#include <QDialog>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>
#include <memory>

#include "shell/clipfix_app.h"
#include "shell/first_instance.h"

namespace clipfix {
namespace {

// Notes each step, and answers as it was told.
class RecordedSteps final : public StartUpSteps {
  public:
    ClassOutcome classOutcome = ClassOutcome::Registered;
    LockOutcome lockOutcome = LockOutcome::First;
    bool framework = true;
    bool window = true;
    QStringList steps;

    void InstallCrashHandler() override { steps << QStringLiteral("crash handler"); }
    ClassOutcome RegisterWindowClass() override {
        steps << QStringLiteral("window class");
        return classOutcome;
    }
    void StartDrawing() override { steps << QStringLiteral("drawing"); }
    LockOutcome TakeInstanceLock() override {
        steps << QStringLiteral("lock");
        return lockOutcome;
    }
    void BringFirstInstanceForward() override { steps << QStringLiteral("bring forward"); }
    void ReadLanguageSettings() override {
        steps << QStringLiteral("language");
        languageRead_ = true;
    }
    bool InitialiseFramework() override {
        steps << QStringLiteral("framework");
        return framework;
    }
    void MakeManagers() override { steps << QStringLiteral("managers"); }
    void ReadSystemVersion() override { steps << QStringLiteral("version"); }
    bool CreateMainFrame() override {
        steps << QStringLiteral("create window");
        return window;
    }
    void ShowMainFrame() override { steps << QStringLiteral("show window"); }
    QString Text(const char* key) override {
        return languageRead_ ? QString::fromLatin1(key) : QString();
    }
    void ShowBox(const QString& text, const QString& title, BoxIcon icon) override {
        steps << QStringLiteral("box|%1|%2|%3")
                     .arg(title, text,
                          icon == BoxIcon::Information ? QStringLiteral("information") : QString());
    }

  private:
    bool languageRead_ = false;
};

QStringList Split(const char* steps) {
    return QString::fromLatin1(steps).split(QStringLiteral(", "));
}

class StartUpTest : public QObject {
    Q_OBJECT

    using Start = CKelvoClipfixApp::Start;

    RecordedSteps steps_;

    Start InitInstance() { return CKelvoClipfixApp(steps_).InitInstance(); }

  private Q_SLOTS:
    void init() { steps_ = RecordedSteps(); }

    void TheStepsComeInTheirOrder() {
        QCOMPARE(InitInstance(), Start::Run);
        QCOMPARE(steps_.steps, Split("crash handler, window class, drawing, lock, language, "
                                     "framework, managers, version, create window, show window"));
    }

    void AClassThatCannotBeReadEndsTheStart() {
        steps_.classOutcome = StartUpSteps::ClassOutcome::ReadFailed;
        QCOMPARE(InitInstance(), Start::Failed);
        QCOMPARE(steps_.steps, Split("crash handler, window class, "
                                     "box|Kelvo Clipfix|GetClassInfoEx failed|"));
    }

    void AClassThatCannotBeRegisteredEndsTheStart() {
        steps_.classOutcome = StartUpSteps::ClassOutcome::RegisterFailed;
        QCOMPARE(InitInstance(), Start::Failed);
        QCOMPARE(steps_.steps, Split("crash handler, window class, "
                                     "box|Kelvo Clipfix|Window Registration failed|"));
    }

    void ASecondStartShowsTheBoxWithoutATitleAndLeaves() {
        steps_.lockOutcome = StartUpSteps::LockOutcome::AlreadyRunning;
        QCOMPARE(InitInstance(), Start::Leave);
        QCOMPARE(steps_.steps, Split("crash handler, window class, drawing, lock, "
                                     "box||Kelvo Clipfix is already running in another instance|, "
                                     "bring forward"));
    }

    void AnyOtherTroubleWithTheLockLeavesAtOnce() {
        steps_.lockOutcome = StartUpSteps::LockOutcome::Failed;
        QCOMPARE(InitInstance(), Start::Leave);
        QCOMPARE(steps_.steps, Split("crash handler, window class, drawing, lock"));
    }

    void AFrameworkThatFailsEndsTheStart() {
        steps_.framework = false;
        QCOMPARE(InitInstance(), Start::Failed);
        QCOMPARE(steps_.steps.last(),
                 QStringLiteral("box|Kelvo Clipfix|OLE initialization failed.  Make sure that the "
                                "OLE libraries are the correct version.|"));
        QVERIFY(!steps_.steps.contains(QStringLiteral("create window")));
    }

    void AWindowThatCannotBeMadeEndsTheStart() {
        steps_.window = false;
        QCOMPARE(InitInstance(), Start::Failed);
        QCOMPARE(steps_.steps.last(),
                 QStringLiteral("box|Kelvo Clipfix Windows|Window Creation fails|information"));
        QVERIFY(!steps_.steps.contains(QStringLiteral("show window")));
    }

    void AKnockBringsTheFirstWindowForward() {
        const QTemporaryDir folder;
        const std::filesystem::path place = folder.path().toStdString();
        QVERIFY(!KnockAtFirstInstance(place));
        int knocks = 0;
        const FirstInstance first(place, [&] { ++knocks; });
        QVERIFY(first.IsListening());
        QVERIFY(KnockAtFirstInstance(place));
        QVERIFY(KnockAtFirstInstance(place));
        QTRY_COMPARE(knocks, 2);
    }

    void AKnockIsHeardInsideAModalDialog() {
        const QTemporaryDir folder;
        const std::filesystem::path place = folder.path().toStdString();
        QDialog dialog;
        const FirstInstance first(place, [&] { dialog.accept(); });
        QTimer::singleShot(0, this, [&] { QVERIFY(KnockAtFirstInstance(place)); });
        QTimer::singleShot(5000, &dialog, &QDialog::reject);
        QCOMPARE(dialog.exec(), static_cast<int>(QDialog::Accepted));
    }

    void TheSocketOfAKilledProcessIsTakenOver() {
        const QTemporaryDir folder;
        const std::filesystem::path place = folder.path().toStdString();
        int knocks = 0;
        const FirstInstance killed(place, [] {});
        const FirstInstance first(place, [&] { ++knocks; });
        QVERIFY(first.IsListening());
        QVERIFY(KnockAtFirstInstance(place));
        QTRY_COMPARE(knocks, 1);
    }
};

}  // namespace
}  // namespace clipfix

QTEST_MAIN(clipfix::StartUpTest)

#include "start_up_test.moc"
