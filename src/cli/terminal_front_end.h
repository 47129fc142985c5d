#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <mutex>
#include <string>
#include <vector>

#include "job/state/job_front_end.h"

namespace clipfix::cli {

// The job's face in a terminal: a progress line on standard error where that is a terminal, and
// no questions. Dialogs are closed at once; how the job ended is read from the driver.
class TerminalFrontEnd final : public JobFrontEnd {
  public:
    struct Settings {
        bool showProgress = false;
        bool keepPercents = false;
        std::uint64_t damagedSize = 0;  // bytes, for the speed
    };

    TerminalFrontEnd(JobState& state, Settings settings);

    // What answers the message 0x800B; the driver's OnAviProgress.
    void SetAviProgressHandler(std::function<void()> handler) {
        onAviProgress_ = std::move(handler);
    }
    // Shows how many bytes of the finished file have reached the medium.
    void ShowFlush(std::uint64_t done, std::uint64_t total);
    // Removes the progress line.
    void ClearLine();
    // Every percent that was sent, in order; empty unless keepPercents.
    [[nodiscard]] const std::vector<int>& Percents() const { return percents_; }

    [[nodiscard]] std::string Text(std::string_view key) override { return std::string(key); }
    void SetVisible(JobControlId, bool) override {}
    void SetEnabled(JobControlId, bool) override {}
    void SetText(JobControlId control, const std::string& text, const TextStyle& style) override;
    void SetBar(int percent) override;
    void ResetBar() override {}
    void Redraw(JobSection) override {}
    void StartBusyAnimation(bool) override {}
    void StopBusyAnimation() override {}
    void RunMessageDialog(const std::string&, const std::string&, const std::string&,
                          const std::string&) override;
    void RunSystemBox(const std::string&, const std::string&) override {}
    void SendAviProgress() override;
    void ShowDetails() override {}
    [[nodiscard]] int GraphicObjectCount() override { return 0; }
    void RebuildSections() override {}
    void StartTimer(int, int) override {}
    void StopTimer(int) override {}
    void ClosePlayer() override {}
    [[nodiscard]] std::optional<std::string> AskSavePath(const SaveDialogRequest&) override {
        return std::nullopt;
    }
    void OpenFolder(const std::string&) override {}

  private:
    void BeginPhase(std::string name);
    void KeepPercent(int percent);
    void DrawLine(int percent);

    JobState& state_;
    Settings settings_;
    std::function<void()> onAviProgress_;
    std::mutex mutex_;
    std::vector<int> percents_;
    std::string phase_ = "Repairing";
    std::chrono::steady_clock::time_point phaseStart_;
    bool lineStands_ = false;
};

}  // namespace clipfix::cli
