#pragma once

#include <deque>
#include <functional>
#include <mutex>
#include <optional>
#include <set>
#include <string>
#include <string_view>

#include "job/state/job_front_end.h"
#include "support/job_log.h"

namespace clipfix::test {

// The face of a job in a test: writes down everything that is shown, asked and set, and answers
// dialogs from a script. Texts are their own keys. A style is written down where it is not the
// common one, as "(height px, colour, face, on fill)".
//
// The lines: "Title = IDS_REPAIR", "show Pause", "hide Pause", "enable Save", "disable Repair",
// "bar 42", "bar reset", "redraw Top", "animate repair", "animate save", "stop animation",
// "dialog 4: text | title | first label | second label", "answered Yes", "box: text | title",
// "message 800B", "details", "rebuild sections", "timer 1: 1000 ms", "stop timer 1",
// "close player", "ask save path: name | extension | filter | flags", "open folder /somewhere/".
class ScriptedFrontEnd final : public JobFrontEnd {
  public:
    ScriptedFrontEnd(JobState& state, JobLog& log) : state_(state), log_(log) {}
    ScriptedFrontEnd(const ScriptedFrontEnd&) = delete;
    ScriptedFrontEnd& operator=(const ScriptedFrontEnd&) = delete;
    // A dialog of the script that never opened is a failure of the test.
    ~ScriptedFrontEnd() override;

    // The next dialog with this text gets this answer; `whileOpen` runs on the thread that opened
    // it while it stands. A dialog that the script does not know is a failure and gets an OK.
    void WillAnswer(std::string text, MessageAnswer answer, std::function<void()> whileOpen = {});
    // From now on a dialog that the script does not know gets the answer that the function gives to
    // its text.
    void AnswerAnything(std::function<MessageAnswer(const std::string& text)> answers);
    // The next save dialog gets this path, or is cancelled. Without a script it is cancelled.
    void WillChoose(std::optional<std::string> path) { savePaths_.push_back(std::move(path)); }
    // Runs before the line is written, on the thread that writes it.
    void Before(std::string line, std::function<void()> call);

    // What takes the message 800B, on the sender's thread.
    std::function<void()> onAviProgress = {};
    int graphicObjects = 0;
    // The controls that stand now, by name in the order of JobControlId: "AddFile Hint" at first.
    // ShowDetails and RebuildSections count with what they show and hide.
    [[nodiscard]] std::string Visible() const;
    // Every key that was read, whether its text was then shown or not.
    [[nodiscard]] Lines KeysRead() const;

    [[nodiscard]] std::string Text(std::string_view key) override;
    void SetVisible(JobControlId control, bool visible) override;
    void SetEnabled(JobControlId control, bool enabled) override;
    void SetText(JobControlId control, const std::string& text, const TextStyle& style) override;
    void SetBar(int percent) override;
    void ResetBar() override { Write("bar reset"); }
    void Redraw(JobSection section) override;
    void StartBusyAnimation(bool ofSave) override;
    void StopBusyAnimation() override { Write("stop animation"); }
    void RunMessageDialog(const std::string& text, const std::string& title,
                          const std::string& firstLabel, const std::string& secondLabel) override;
    void RunSystemBox(const std::string& text, const std::string& title) override;
    void SendAviProgress() override;
    void ShowDetails() override;
    [[nodiscard]] int GraphicObjectCount() override { return graphicObjects; }
    void RebuildSections() override;
    void StartTimer(int id, int milliseconds) override;
    void StopTimer(int id) override;
    void ClosePlayer() override { Write("close player"); }
    [[nodiscard]] std::optional<std::string> AskSavePath(const SaveDialogRequest& request) override;
    void OpenFolder(const std::string& path) override { Write("open folder " + path); }

  private:
    struct Answer {
        std::string text;
        MessageAnswer answer;
        std::function<void()> whileOpen;
    };
    struct Hook {
        std::string line;
        std::function<void()> call;
    };
    void Write(const std::string& line);
    [[nodiscard]] Answer TakeAnswer(const std::string& text);

    JobState& state_;
    JobLog& log_;
    mutable std::mutex script_;
    std::deque<Answer> answers_;
    std::function<MessageAnswer(const std::string&)> answerAnything_;
    std::deque<Hook> hooks_;
    Lines keysRead_;
    std::set<JobControlId> visible_{JobControlId::AddFile, JobControlId::Hint};
    std::deque<std::optional<std::string>> savePaths_;
};

// The name of a control as the lines have it.
[[nodiscard]] std::string NameOf(JobControlId control);

}  // namespace clipfix::test
