#include "shell/desktop.h"

#include <QDesktopServices>
#include <QDir>
#include <QFile>
#include <QFileDialog>
#include <QFileInfo>
#include <QHeaderView>
#include <QMessageBox>
#include <QProcess>
#include <QSplitter>
#include <QStandardPaths>
#include <QTreeView>
#include <algorithm>
#include <array>
#include <cstdio>

#include "platform/player_link.h"

namespace clipfix {

namespace {

// Codes of a failed start.
constexpr int kFileNotFound = 2;
constexpr int kPathNotFound = 3;
constexpr int kAccessDenied = 5;
constexpr int kNotAProgram = 11;
constexpr int kNothingOpensIt = 31;

struct FailureRow {
    int code;
    const char* text;
};

constexpr std::array kFailures{
    FailureRow{0, "The operating system is out of memory or resources."},
    FailureRow{kFileNotFound, "The specified file was not found."},
    FailureRow{kPathNotFound, "The specified path was not found."},
    FailureRow{kNotAProgram, "The file is invalid (it's a non-Win32 file)."},
    FailureRow{kAccessDenied, "The operating system denied access to the specified file."},
    FailureRow{27, "The file name association is incomplete or invalid."},
    FailureRow{30,
               "The DDE transaction could not be completed because other DDE transactions were "
               "being processed."},
    FailureRow{29, "The DDE transaction failed."},
    FailureRow{28, "The DDE transaction could not be completed because the request timed out."},
    FailureRow{32, "The specified DLL was not found."},
    FailureRow{kNothingOpensIt,
               "There is no application associated with the given file name extension. This error "
               "will also be returned if you attempt to print a file that is not printable."},
    FailureRow{8, "There was not enough memory to complete the operation."},
    FailureRow{26, "A sharing violation occurred."},
};

QString FromPath(const std::string& path) {
    return QFile::decodeName(QByteArray::fromStdString(path));
}

std::string ToPath(const QString& path) {
    return QFile::encodeName(path).toStdString();
}

}  // namespace

QString FailedStartText(int code) {
    const auto* const row = std::find_if(kFailures.begin(), kFailures.end(),
                                         [code](const FailureRow& r) { return r.code == code; });
    return row == kFailures.end() ? QString() : QString::fromLatin1(row->text);
}

QString ToolkitFilter(const QString& filter) {
    const QStringList parts = filter.split(QLatin1Char('|'));
    QString patterns = parts.value(1);
    patterns.replace(QLatin1Char(';'), QLatin1Char(' '));
    return parts.value(0).section(QLatin1Char('('), 0, 0).trimmed() + QStringLiteral(" (") +
           patterns + QLatin1Char(')');
}

void MakeRoom(QFileDialog& dialog) {
    dialog.resize(860, 540);
    auto* list = dialog.findChild<QTreeView*>(QStringLiteral("treeView"));
    auto* places = dialog.findChild<QSplitter*>(QStringLiteral("splitter"));
    if (list == nullptr || places == nullptr) {
        return;  // the desktop has a file dialog of its own
    }
    list->header()->setSectionResizeMode(QHeaderView::ResizeToContents);
    list->header()->setSectionResizeMode(0, QHeaderView::Stretch);
    places->setSizes({160, 700});
}

QString SystemDesktop::FirstFolder() const {
    if (!lastFolder_.isEmpty() && QDir(lastFolder_).exists()) {
        return lastFolder_;
    }
    const QString movies = QStandardPaths::writableLocation(QStandardPaths::MoviesLocation);
    return QDir(movies).exists() ? movies : QDir::homePath();
}

std::optional<std::string> SystemDesktop::AskFileToOpen(QWidget* parent, const QString& title,
                                                        const QString& filter) {
    QFileDialog dialog(parent, title, FirstFolder(), ToolkitFilter(filter));
    dialog.setAcceptMode(QFileDialog::AcceptOpen);
    dialog.setFileMode(QFileDialog::ExistingFile);
    MakeRoom(dialog);
    if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty()) {
        return std::nullopt;
    }
    lastFolder_ = dialog.directory().absolutePath();
    return ToPath(dialog.selectedFiles().constFirst());
}

// The dialog asks before overwriting and demands that the folder exists, which is what the flags
// of the request stand for.
std::optional<std::string> SystemDesktop::AskFileToSave(QWidget* parent, const QString& title,
                                                        const SaveDialogRequest& request) {
    const QString filter = QString::fromStdString(request.filter);
    QFileDialog dialog(parent, title, FirstFolder(), ToolkitFilter(filter));
    dialog.setAcceptMode(QFileDialog::AcceptSave);
    dialog.setFileMode(QFileDialog::AnyFile);
    MakeRoom(dialog);
    dialog.setDefaultSuffix(
        QString::fromStdString(request.defaultExtension).section(QLatin1Char('.'), -1));
    dialog.selectFile(QString::fromStdString(request.name));
    if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty()) {
        return std::nullopt;
    }
    lastFolder_ = dialog.directory().absolutePath();
    return ToPath(dialog.selectedFiles().constFirst());
}

int SystemDesktop::StartProgram(const std::filesystem::path& path, const QStringList& arguments,
                                const std::filesystem::path& folder) {
    const QFileInfo program(FromPath(path.string()));
    if (!program.dir().exists()) {
        return kPathNotFound;
    }
    if (!program.exists()) {
        return kFileNotFound;
    }
    if (!program.isExecutable() || !program.isFile()) {
        return kAccessDenied;
    }
    return QProcess::startDetached(program.filePath(), arguments, FromPath(folder.string()))
               ? kStarted
               : kNotAProgram;
}

int SystemDesktop::Open(const QUrl& url) {
    if (url.isLocalFile() && !QFileInfo::exists(url.toLocalFile())) {
        return kFileNotFound;
    }
    return QDesktopServices::openUrl(url) ? kStarted : kNothingOpensIt;
}

void SystemDesktop::ShowBox(QWidget* parent, const QString& text, const QString& title,
                            BoxIcon icon) {
    QMessageBox box(icon == BoxIcon::Stop ? QMessageBox::Critical : QMessageBox::Information, title,
                    text, QMessageBox::Ok, parent);
    box.setTextFormat(Qt::PlainText);
    (void)box.exec();
}

void SystemDesktop::ClosePlayer() {
    (void)platform::ClosePlayer(platform::PlayerSocketPath());
}

void SystemDesktop::SendFileToPlayer(const std::string& path) {
    const auto socket = platform::PlayerSocketPath();
    if (platform::IsPlayerRunning(socket)) {
        (void)platform::SendFileToPlayer(socket, path);
    }
}

}  // namespace clipfix
