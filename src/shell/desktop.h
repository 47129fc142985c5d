#pragma once

#include <QString>
#include <QUrl>
#include <filesystem>
#include <optional>
#include <string>

#include "job/state/job_front_end.h"

class QWidget;

class QFileDialog;

namespace clipfix {

// How a start of another program or page ended, as the codes of the failed-start texts. Above 32 it
// succeeded.
inline constexpr int kLastFailureCode = 32;
inline constexpr int kStarted = 33;

// The text of a failed start; empty for a code that the table does not know.
[[nodiscard]] QString FailedStartText(int code);

// The filter of a file dialog as it is given, "Label(*.a;*.b)|*.a;*.b|", in the toolkit's form,
// "Label (*.a *.b)".
[[nodiscard]] QString ToolkitFilter(const QString& filter);

// What the window asks of the desktop around it. The real one stands below; tests put in their own.
// Paths are as the system gives them.
class Desktop {
  public:
    virtual ~Desktop() = default;

    // The file that the person picked, which exists; nothing after a cancel.
    [[nodiscard]] virtual std::optional<std::string> AskFileToOpen(QWidget* parent,
                                                                   const QString& title,
                                                                   const QString& filter) = 0;
    [[nodiscard]] virtual std::optional<std::string> AskFileToSave(
        QWidget* parent, const QString& title, const SaveDialogRequest& request) = 0;

    // Starts the program at `path`, to run in `folder`; gives a code as above.
    [[nodiscard]] virtual int StartProgram(const std::filesystem::path& path,
                                           const QStringList& arguments,
                                           const std::filesystem::path& folder) = 0;
    // Opens a page or a folder by the desktop's own way.
    virtual int Open(const QUrl& url) = 0;

    // A plain box of the system's with an OK button, a stop picture in it where something failed.
    enum class BoxIcon { Information, Stop };
    virtual void ShowBox(QWidget* parent, const QString& text, const QString& title,
                         BoxIcon icon) = 0;

    // The preview player. The first may be called from any thread.
    virtual void ClosePlayer() = 0;
    virtual void SendFileToPlayer(const std::string& path) = 0;
};

// Gives the toolkit's own file dialog room for the columns of its list.
void MakeRoom(QFileDialog& dialog);

class SystemDesktop final : public Desktop {
  public:
    [[nodiscard]] std::optional<std::string> AskFileToOpen(QWidget* parent, const QString& title,
                                                           const QString& filter) override;
    [[nodiscard]] std::optional<std::string> AskFileToSave(
        QWidget* parent, const QString& title, const SaveDialogRequest& request) override;
    [[nodiscard]] int StartProgram(const std::filesystem::path& path, const QStringList& arguments,
                                   const std::filesystem::path& folder) override;
    int Open(const QUrl& url) override;
    void ShowBox(QWidget* parent, const QString& text, const QString& title, BoxIcon icon) override;
    void ClosePlayer() override;
    void SendFileToPlayer(const std::string& path) override;

  private:
    [[nodiscard]] QString FirstFolder() const;
    QString lastFolder_;
};

}  // namespace clipfix
