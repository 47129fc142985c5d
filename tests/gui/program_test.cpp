// The built program from outside: starts, second starts, crashes.

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>
#include <csignal>
#include <memory>

#include "shell/first_instance.h"

namespace clipfix {
namespace {

class ProgramTest : public QObject {
    Q_OBJECT

    std::unique_ptr<QTemporaryDir> home_;

    [[nodiscard]] std::filesystem::path Runtime() const { return home_->path().toStdString(); }
    [[nodiscard]] QString CrashFolder() const {
        return home_->filePath(QStringLiteral("data/Tarsk/clipfix"));
    }

    // A start in a home of the test's own, on a screen in memory.
    std::unique_ptr<QProcess> Start() {
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(QStringLiteral("XDG_RUNTIME_DIR"), home_->path());
        environment.insert(QStringLiteral("XDG_DATA_HOME"), home_->filePath("data"));
        environment.insert(QStringLiteral("XDG_CONFIG_HOME"), home_->filePath("config"));
        environment.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("offscreen"));
        auto program = std::make_unique<QProcess>();
        program->setProcessEnvironment(environment);
        program->start(QStringLiteral(CLIPFIX_WINDOW_PROGRAM), QStringList());
        return program;
    }
    // It listens once its window is shown.
    bool IsUp() {
        return QTest::qWaitFor([this] { return KnockAtFirstInstance(Runtime()); }, 20000);
    }
    static void Send(QProcess& program, int signal) {
        ::kill(static_cast<pid_t>(program.processId()), signal);
    }

  private Q_SLOTS:
    void init() {
        home_ = std::make_unique<QTemporaryDir>();
        QFile::setPermissions(home_->path(),
                              QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    }

    void ItStartsAndKeepsRunning() {
        const auto program = Start();
        QVERIFY(IsUp());
        QVERIFY(!program->waitForFinished(300));
        program->kill();
        program->waitForFinished();
    }

    void ASecondStartStandsInItsBoxAndAFreeLockLetsTheNextOneRun() {
        const auto first = Start();
        QVERIFY(IsUp());
        const auto second = Start();
        QVERIFY(!second->waitForFinished(1000));
        first->kill();
        QVERIFY(first->waitForFinished());
        // The second one never came further than its box: nobody listens.
        QVERIFY(!KnockAtFirstInstance(Runtime()));
        second->kill();
        second->waitForFinished();
        const auto third = Start();
        QVERIFY(IsUp());
        third->kill();
        third->waitForFinished();
    }

    void ALockThatCannotBeMadeLeavesAtOnceWith0() {
        // A folder stands where the lock file should be.
        QVERIFY(QDir(home_->path()).mkdir(QStringLiteral("GlobalMutexKCF.lock")));
        const auto program = Start();
        QVERIFY(program->waitForFinished(20000));
        QCOMPARE(program->exitStatus(), QProcess::NormalExit);
        QCOMPARE(program->exitCode(), 0);
    }

    void ACrashLeavesTheCrashFile() {
        QVERIFY(QDir().mkpath(CrashFolder()));
        const auto program = Start();
        QVERIFY(IsUp());
        const qint64 pid = program->processId();
        Send(*program, SIGSEGV);
        QVERIFY(program->waitForFinished(20000));
        QCOMPARE(program->exitStatus(), QProcess::CrashExit);
        QFile crash(CrashFolder() + QStringLiteral("/new.dmp"));
        QVERIFY(crash.open(QIODevice::ReadOnly));
        const QByteArray text = crash.readAll();
        QVERIFY(text.startsWith("Kelvo Clipfix " CLIPFIX_VERSION "\nSignal: 11 (SIGSEGV"));
        QVERIFY(text.contains("\nAddress: 0x"));
        QVERIFY(text.contains("\nProcess: " + QByteArray::number(pid) + "\n"));
        // The thread that runs the window has the number of the process.
        QVERIFY(text.contains("\nThread: " + QByteArray::number(pid) + "\n"));
        QVERIFY(text.contains("\nBacktrace:\n"));
        QVERIFY(text.contains("kelvo-clipfix(main+"));
        QVERIFY(text.contains("libQt6Widgets"));
        QVERIFY(text.contains("\nMemory map:\n"));
    }

    void ACrashWithoutTheFolderLeavesNothing() {
        const auto program = Start();
        QVERIFY(IsUp());
        Send(*program, SIGSEGV);
        QVERIFY(program->waitForFinished(20000));
        QCOMPARE(program->exitStatus(), QProcess::CrashExit);
        QVERIFY(!QDir(home_->filePath(QStringLiteral("data"))).exists());
    }
};

}  // namespace
}  // namespace clipfix

QTEST_GUILESS_MAIN(clipfix::ProgramTest)

#include "program_test.moc"
