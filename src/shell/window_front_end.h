#pragma once

#include "job/state/job_front_end.h"
#include "shell/interface_calls.h"
#include "text/texts.h"

namespace clipfix {

class CMainFrame;

// The window as a job sees it. Every operation may be called from any thread: it goes to the
// interface thread and comes back when it is done there, or at once when the window is being left.
class WindowFrontEnd final : public JobFrontEnd {
  public:
    // All of it outlives the object. It belongs to the thread that makes it, the interface thread.
    WindowFrontEnd(JobState& state, const Texts& texts, CMainFrame& frame)
        : state_(&state), texts_(&texts), frame_(&frame) {}

    // From now on nobody waits for the interface thread, which is about to wait for the workers.
    void Leave() { calls_.Leave(); }

    [[nodiscard]] std::string Text(std::string_view key) override;
    void SetVisible(JobControlId control, bool visible) override;
    void SetEnabled(JobControlId control, bool enabled) override;
    void SetText(JobControlId control, const std::string& text, const TextStyle& style) override;
    void SetBar(int percent) override;
    void ResetBar() override;
    void Redraw(JobSection section) override;
    void StartBusyAnimation(bool ofSave) override;
    void StopBusyAnimation() override;
    void RunMessageDialog(const std::string& text, const std::string& title,
                          const std::string& firstLabel, const std::string& secondLabel) override;
    void RunSystemBox(const std::string& text, const std::string& title) override;
    void SendAviProgress() override;
    void ShowDetails() override;
    [[nodiscard]] int GraphicObjectCount() override;
    void RebuildSections() override;
    void StartTimer(int id, int milliseconds) override;
    void StopTimer(int id) override;
    void ClosePlayer() override;
    [[nodiscard]] std::optional<std::string> AskSavePath(const SaveDialogRequest& request) override;
    void OpenFolder(const std::string& path) override;

  private:
    JobState* state_;
    const Texts* texts_;
    CMainFrame* frame_;
    InterfaceCalls calls_;
};

}  // namespace clipfix
