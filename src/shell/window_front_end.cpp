#include "shell/window_front_end.h"

#include <QFile>

#include "shell/main_frame.h"
#include "shell/message_dlg.h"

namespace clipfix {

namespace {

QString ToQt(const std::string& text) {
    return QString::fromStdString(text);
}

}  // namespace

std::string WindowFrontEnd::Text(std::string_view key) {
    return texts_->Text(key, kMessageTextSize);
}

void WindowFrontEnd::SetVisible(JobControlId control, bool visible) {
    calls_.Run([&] {
        for (Section* section : frame_->Sections()) {
            section->SetControlVisible(control, visible);
        }
        frame_->PageChanged();
    });
}

void WindowFrontEnd::SetEnabled(JobControlId control, bool enabled) {
    calls_.Run([&] {
        for (Section* section : frame_->Sections()) {
            section->SetControlEnabled(control, enabled);
        }
        frame_->PageChanged();
    });
}

// Labels hold paths as the system gives them.
void WindowFrontEnd::SetText(JobControlId control, const std::string& text,
                             const TextStyle& style) {
    calls_.Run([&] {
        const QString shown = QFile::decodeName(QByteArray::fromStdString(text));
        for (Section* section : frame_->Sections()) {
            section->SetControlText(control, shown, style);
        }
    });
}

void WindowFrontEnd::SetBar(int percent) {
    calls_.Run([&] { frame_->Container().Bar().SetPosition(percent); });
}

void WindowFrontEnd::ResetBar() {
    calls_.Run([&] { frame_->Container().Bar().Reset(); });
}

void WindowFrontEnd::Redraw(JobSection section) {
    calls_.Run([&] {
        switch (section) {
            case JobSection::Top:
                frame_->Top().update();
                break;
            case JobSection::Centre:
                frame_->Container().update();
                break;
            case JobSection::Bottom:
                frame_->Bottom().update();
                break;
            case JobSection::Frame:
                frame_->update();
                break;
        }
    });
}

void WindowFrontEnd::StartBusyAnimation(bool ofSave) {
    calls_.Run([&] { frame_->Container().ShowBusyAnimation(ofSave); });
}

void WindowFrontEnd::StopBusyAnimation() {
    calls_.Run([&] { frame_->Container().StopBusyAnimation(); });
}

void WindowFrontEnd::RunMessageDialog(const std::string& text, const std::string& title,
                                      const std::string& firstLabel,
                                      const std::string& secondLabel) {
    const bool wasRun = calls_.Run([&] {
        CMessageDlg::Run(*state_, *texts_, ToQt(text), ToQt(title), ToQt(firstLabel),
                         ToQt(secondLabel), frame_, frame_->HelpPage());
    });
    if (!wasRun) {
        CloseMessage(*state_, MessageAnswer::No);
    }
}

void WindowFrontEnd::RunSystemBox(const std::string& text, const std::string& title) {
    calls_.Run([&] {
        frame_->Parts().desktop.ShowBox(frame_, ToQt(text), ToQt(title),
                                        Desktop::BoxIcon::Information);
    });
}

void WindowFrontEnd::SendAviProgress() {
    calls_.Run([&] { frame_->Parts().driver.OnAviProgress(); });
}

void WindowFrontEnd::ShowDetails() {
    calls_.Run([&] { frame_->Container().ShowDetails(); });
}

int WindowFrontEnd::GraphicObjectCount() {
    int count = 0;
    calls_.Run([&] { count = static_cast<int>(frame_->findChildren<QObject*>().size()); });
    return count;
}

void WindowFrontEnd::RebuildSections() {
    calls_.Run([&] { frame_->RebuildSections(); });
}

void WindowFrontEnd::StartTimer(int id, int milliseconds) {
    calls_.Run([&] { frame_->Bottom().StartTimer(id, milliseconds); });
}

void WindowFrontEnd::StopTimer(int id) {
    calls_.Run([&] { frame_->Bottom().StopTimer(id); });
}

void WindowFrontEnd::ClosePlayer() {
    frame_->Parts().desktop.ClosePlayer();
}

std::optional<std::string> WindowFrontEnd::AskSavePath(const SaveDialogRequest& request) {
    std::optional<std::string> chosen;
    calls_.Run([&] {
        chosen = frame_->Parts().desktop.AskFileToSave(frame_, ToQt(Text("IDS_SAVE")), request);
    });
    return chosen;
}

// Whether the folder could be opened is passed over, as its move is.
void WindowFrontEnd::OpenFolder(const std::string& path) {
    calls_.Run([&] {
        (void)frame_->Parts().desktop.Open(
            QUrl::fromLocalFile(QFile::decodeName(QByteArray::fromStdString(path))));
    });
}

}  // namespace clipfix
