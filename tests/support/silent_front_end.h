#pragma once

#include <string>

#include "job/state/job_front_end.h"

namespace clipfix::test {

// A face that shows nothing and answers nothing.
class SilentFrontEnd : public JobFrontEnd {
  public:
    [[nodiscard]] std::string Text(std::string_view key) override { return std::string(key); }
    void SetVisible(JobControlId, bool) override {}
    void SetEnabled(JobControlId, bool) override {}
    void SetText(JobControlId, const std::string&, const TextStyle&) override {}
    void SetBar(int) override {}
    void ResetBar() override {}
    void Redraw(JobSection) override {}
    void StartBusyAnimation(bool) override {}
    void StopBusyAnimation() override {}
    void RunMessageDialog(const std::string&, const std::string&, const std::string&,
                          const std::string&) override {}
    void RunSystemBox(const std::string&, const std::string&) override {}
    void SendAviProgress() override {}
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
};

}  // namespace clipfix::test
