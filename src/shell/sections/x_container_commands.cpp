#include <QFile>

#include "job/driver/job_engines.h"
#include "job/state/job_paths.h"
#include "shell/child.h"
#include "shell/details.h"
#include "shell/help_pages.h"
#include "shell/sections/x_container.h"
#include "shell/skin/fonts.h"
#include "shell/skin/pictures.h"

// The commands of the centre section: the choice of the files, the details, the preview.
namespace clipfix {

namespace {

using enum JobControlId;

constexpr const char* kPlayerProgram = "kc-mplayer";
constexpr int kPlayerStartMilliseconds = 1000;

}  // namespace

void CXContainer::OnAddFile() {
    parts_->state.g_strCorruptPath.clear();
    parts_->state.g_strCorruptCopy.clear();
    const auto chosen = parts_->desktop.AskFileToOpen(
        window(), WordOf(parts_->texts, "IDS_SELECT_VIDEO"), QString::fromLatin1(kVideoFilter));
    if (chosen) {
        TakeCorruptFile(*chosen);
    } else {
        parts_->driver.OnHomePage();
    }
}

void CXContainer::TakeCorruptFile(const std::string& path) {
    JobState& state = parts_->state;
    JobFrontEnd& face = parts_->frontEnd;
    ChooseCorruptFile(state, path);
    face.SetText(SelectedText, face.Text("IDS_FILE_SELECTED"),
                 {.colour = skin::kSelectedText, .face = skin::kEmphasisFace});
    face.SetVisible(SelectedText, true);
    const bool movJob = state.g_bMovJob == 1;
    const JobControlId label = movJob ? JobControlId::CorruptedLabel : PathLabel;
    face.SetText(label, state.g_strCorruptLabel, {});
    face.SetVisible(label, true);
    face.SetVisible(movJob ? PathLabel : JobControlId::CorruptedLabel, false);
    for (const auto hidden : {Hint, ReferenceText, AddFile, ChooseReference, WhyHealthyLink}) {
        face.SetVisible(hidden, false);
    }
    face.SetEnabled(ChooseReference, movJob);
    for (const auto shown : {Repair, Back}) {
        face.SetEnabled(shown, true);
        face.SetVisible(shown, true);
    }
    face.Redraw(JobSection::Frame);
}

void CXContainer::OnChooseReference() {
    const auto chosen =
        parts_->desktop.AskFileToOpen(window(), WordOf(parts_->texts, "IDS_SELECT_REFERNCE_HEADER"),
                                      QString::fromLatin1(kReferenceFilter));
    // After a cancel the path is empty, also where one had been chosen before. That is meant.
    TakeReference(chosen.value_or(std::string()));
}

void CXContainer::TakeReference(const std::string& path) {
    JobState& state = parts_->state;
    JobFrontEnd& face = parts_->frontEnd;
    ChooseReferenceFile(state, path);
    if (path.empty()) {
        face.SetText(ReferenceText, face.Text("IDS_SELECT_REFERENCE"),
                     {.colour = skin::kWarningText});
    } else {
        face.SetText(ReferenceText, state.g_strReferenceLabel, {});
    }
    SetReferenceIsNextStep(path.empty());
    face.SetVisible(ReferenceText, true);
    face.SetEnabled(Repair, !path.empty());
    face.SetVisible(Repair, true);
    face.Redraw(JobSection::Frame);
}

void CXContainer::OnWhyHealthy() {
    // Whether it could be opened is not looked at.
    (void)parts_->desktop.Open(FindPage(*parts_, WordOf(parts_->texts, "IDS_WHY_HEALTHY_URL")));
}

void CXContainer::ShowDetails() {
    for (const auto hidden : {BusyAnimation, StatusText, ProgressBar, StartTimeCaption,
                              StartTimeValue, ElapsedTimeCaption, ElapsedTimeValue, PercentText}) {
        SetControlVisible(hidden, false);
    }
    bar_->Reset();
    const MovJob* movJob = parts_->driver.CurrentMovJob();
    const auto rows = MakeDetails(parts_->state, movJob == nullptr ? nullptr : movJob->Movie());
    for (std::size_t i = 0; i < rows.size(); ++i) {
        details_[2 * i]->setText(WordOf(parts_->texts, rows[i].captionKey));
        details_[2 * i + 1]->setText(QFile::decodeName(QByteArray::fromStdString(rows[i].value)));
    }
    SetControlVisible(DetailsGrid, true);
    SetControlVisible(PlayPicture, true);
    window()->update();
}

void CXContainer::ShowBusyAnimation(bool ofSave) {
    if (busy_ != nullptr) {
        busy_->Stop();
        busy_->hide();
    }
    CPictureEx*& picture = ofSave ? busySave_ : busyRepair_;
    if (picture == nullptr) {
        picture = MakeChild<CPictureEx>(kBusyAnimation, this);
        picture->setAccessibleName(WordOf(parts_->texts, "IDS_BUSY"));
        Arrange();
        (void)picture->Load(ofSave ? skin::kBusySave : skin::kBusyRepair);
    }
    busy_ = picture;
    busy_->show();
    busy_->Start();
}

void CXContainer::StopBusyAnimation() {
    if (busy_ != nullptr) {
        busy_->Stop();
    }
}

void CXContainer::OnPreview() {
    JobState& state = parts_->state;
    if (state.g_bSaving == 1) {
        return;
    }
    state.g_bPlayerOpen = 1;
    parts_->desktop.ClosePlayer();
    if (state.g_bMovJob == 0) {
        state.g_strOutputPath = state.g_strAviRepairedPath;
    }
    parts_->driver.MakeWorkFolder();
    // The folder that the player is told to start in is the work folder. The settled value names
    // the file Repaired.mov in it, which no program can start in here.
    const int code = parts_->desktop.StartProgram(
        parts_->programFolder / kPlayerProgram,
        {QFile::decodeName(QByteArray::fromStdString(state.g_strPlayerArgs))},
        parts_->driver.WorkFolder());
    if (code <= kLastFailureCode) {
        TellFailedStart(*parts_, window(), code);
        return;
    }
    // The player gets its time to open the window; the interface goes on meanwhile.
    fileForPlayer_ = state.g_strOutputPath;
    playerStarts_.start(kPlayerStartMilliseconds);
}

}  // namespace clipfix
