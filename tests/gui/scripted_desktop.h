#pragma once

#include <QMutex>
#include <QStringList>
#include <deque>
#include <functional>
#include <vector>

#include "shell/desktop.h"

namespace clipfix::test {

// A desktop that answers file dialogs from a script and notes everything that is asked of it.
class ScriptedDesktop final : public Desktop {
  public:
    // Answers of the coming file dialogs; without one the dialog is cancelled.
    std::deque<std::string> filesToOpen;
    std::deque<std::string> filesToSave;
    // What the coming starts end with.
    int startCode = kStarted;
    std::function<void()> onStart;  // called by each start of a program

    QStringList filters;         // of the open dialogs
    SaveDialogRequest lastSave;  // of the last save dialog
    QStringList boxes;           // "title|text" of the plain boxes
    QStringList opened;          // addresses
    QStringList sentToPlayer;    // paths
    int playerClosings = 0;
    struct StartedProgram {
        std::string path;
        QStringList arguments;
        std::string folder;
    };
    std::vector<StartedProgram> started;

    std::optional<std::string> AskFileToOpen(QWidget* /*parent*/, const QString& /*title*/,
                                             const QString& filter) override {
        filters << filter;
        return Next(filesToOpen);
    }
    std::optional<std::string> AskFileToSave(QWidget* /*parent*/, const QString& /*title*/,
                                             const SaveDialogRequest& request) override {
        lastSave = request;
        return Next(filesToSave);
    }
    int StartProgram(const std::filesystem::path& path, const QStringList& arguments,
                     const std::filesystem::path& folder) override {
        started.push_back({path.string(), arguments, folder.string()});
        if (onStart) {
            onStart();
        }
        return startCode;
    }
    int Open(const QUrl& url) override {
        opened << url.toString();
        return startCode;
    }
    void ShowBox(QWidget* /*parent*/, const QString& text, const QString& title,
                 BoxIcon /*icon*/) override {
        boxes << title + QLatin1Char('|') + text;
    }
    void ClosePlayer() override {
        const QMutexLocker lock(&mutex_);  // may come from a worker
        ++playerClosings;
    }
    void SendFileToPlayer(const std::string& path) override {
        sentToPlayer << QString::fromStdString(path);
    }

  private:
    static std::optional<std::string> Next(std::deque<std::string>& answers) {
        if (answers.empty()) {
            return std::nullopt;
        }
        std::string answer = answers.front();
        answers.pop_front();
        return answer;
    }
    QMutex mutex_;
};

}  // namespace clipfix::test
