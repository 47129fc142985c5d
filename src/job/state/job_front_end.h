#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "job/state/job_state.h"

namespace clipfix {

// The controls that a job shows, hides and fills, by their role. The window has each of them; a
// terminal knows a few and passes over the rest.
enum class JobControlId {
    // Top section.
    Title,
    // Centre section.
    AddFile,
    ChooseReference,
    WhyHealthyLink,
    StatusText,
    ProgressBar,
    StartTimeCaption,
    StartTimeValue,
    ElapsedTimeCaption,
    ElapsedTimeValue,
    PercentText,
    DetailsGrid,
    PlayPicture,
    BusyAnimation,  // only ever hidden by this id; it is shown by being started
    // Bottom section.
    Repair,
    Pause,
    Cancel,
    Back,
    Home,
    Preview,
    Save,
    Hint,
    SelectedText,
    CorruptedLabel,
    ReferenceText,  // the reference's label, or the request to select one
    PathLabel,
};

enum class JobSection { Top, Centre, Bottom, Frame };

// How a text stands. Colours are 0x00BBGGRR.
struct TextStyle {
    int height = 20;  // pixels
    std::uint32_t colour = 0x4B4B4B;
    std::string_view face = "Segoe UI";
    std::optional<std::uint32_t> fill = {};  // background; none leaves it as it is

    friend bool operator==(const TextStyle&, const TextStyle&) = default;
};

// What the save dialog is asked for, and what the finished job shows.
struct SaveDialogRequest {
    std::string defaultExtension;
    std::string filter;
    int flags = 0;
    std::string name;
};

// What a job shows and asks. The window's implementation goes to the interface thread, and waits
// where an answer is needed; a terminal's prints; the tests' records, and answers from a script.
// Workers call it from their own threads.
class JobFrontEnd {
  public:
    virtual ~JobFrontEnd() = default;

    // The text behind a key such as "IDS_REPAIR", read at this moment; empty when there is none.
    // Keys are handed over to the letter, blanks at their end included.
    [[nodiscard]] virtual std::string Text(std::string_view key) = 0;

    virtual void SetVisible(JobControlId control, bool visible) = 0;
    virtual void SetEnabled(JobControlId control, bool enabled) = 0;
    virtual void SetText(JobControlId control, const std::string& text, const TextStyle& style) = 0;
    virtual void SetBar(int percent) = 0;
    virtual void ResetBar() = 0;
    virtual void Redraw(JobSection section) = 0;

    // The busy animation of a repair or of a save. Starting sets g_bAnimationStopped to 0 and
    // stopping sets it to 1; both are the caller's business.
    virtual void StartBusyAnimation(bool ofSave) = 0;
    virtual void StopBusyAnimation() = 0;

    // Runs the message dialog of the kind in g_nMessageKind and comes back when it was closed.
    // The implementation ends it by CloseMessage below. An empty first label makes it a note. Who
    // runs such a dialog past the job's driver calls JobControl::Wake() behind it: a worker may be
    // waiting for the answer.
    virtual void RunMessageDialog(const std::string& text, const std::string& title,
                                  const std::string& firstLabel,
                                  const std::string& secondLabel) = 0;
    // A plain box of the system with an OK button.
    virtual void RunSystemBox(const std::string& text, const std::string& title) = 0;

    // The message 0x800B: the percent of an AVI job may have changed. Comes back when the
    // interface has dealt with it.
    virtual void SendAviProgress() = 0;

    // Fills and shows the details of the repaired file.
    virtual void ShowDetails() = 0;
    // How many graphic objects the interface holds; a window that leaks none answers what it has.
    [[nodiscard]] virtual int GraphicObjectCount() = 0;
    // Destroys the three sections and makes them anew, in the state in which they are created. All
    // timers end with them, the one that led home after a save among them.
    virtual void RebuildSections() = 0;

    // Timers of the interface thread, by id and period in milliseconds.
    virtual void StartTimer(int id, int milliseconds) = 0;
    virtual void StopTimer(int id) = 0;

    // The player's window is closed if there is one.
    virtual void ClosePlayer() = 0;
    // The destination that the person chose; nothing when the dialog was cancelled.
    [[nodiscard]] virtual std::optional<std::string> AskSavePath(
        const SaveDialogRequest& request) = 0;
    virtual void OpenFolder(const std::string& path) = 0;
};

enum class MessageAnswer { Yes, No, Ok };

// What closing a message dialog does to the job's state, whoever shows it.
void CloseMessage(JobState& state, MessageAnswer answer);

// What a step of a job works with. All three outlive the step.
class JobControl;
struct JobContext {
    JobState& state;
    JobControl& control;
    JobFrontEnd& frontEnd;
};

}  // namespace clipfix
