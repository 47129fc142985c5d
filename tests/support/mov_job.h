#pragma once

#include <filesystem>
#include <string>
#include <utility>
#include <vector>

#include "base/bytes.h"
#include "job/state/job_control.h"
#include "job/state/job_front_end.h"
#include "support/silent_front_end.h"

namespace clipfix::test {

// Keeps what a MOV job shows and says, in the order in which it does.
class MovRecorder : public SilentFrontEnd {
  public:
    [[nodiscard]] std::string Text(std::string_view key) override {
        textKeys.emplace_back(key);
        return std::string(key);
    }
    void SetText(JobControlId control, const std::string& text, const TextStyle& style) override {
        shown.push_back({control, text, style});
    }
    void SetBar(int percent) override { bars.push_back(percent); }
    void ResetBar() override { ++barResets; }
    void RunMessageDialog(const std::string& text, const std::string& title,
                          const std::string& firstLabel, const std::string& secondLabel) override {
        messages.push_back({text, title, firstLabel, secondLabel});
    }

    struct Shown {
        JobControlId control;
        std::string text;
        TextStyle style;
    };
    std::vector<Shown> shown;
    std::vector<std::string> textKeys;
    std::vector<int> bars;
    std::vector<std::vector<std::string>> messages;
    int barResets = 0;
};

// All that a job needs around it.
struct MovJobWorld {
    JobState state;
    JobControl control{state};
    MovRecorder frontEnd;

    [[nodiscard]] JobContext Context() { return {state, control, frontEnd}; }
    void SetFiles(const std::filesystem::path& damaged, const std::filesystem::path& reference) {
        state.g_bMovJob = 1;
        state.g_strCorruptPath = damaged.string();
        state.g_strCorruptName = damaged.filename().string();
        state.g_strReferencePath = reference.string();
        state.g_strCheckedPath = reference.string();
    }
};

}  // namespace clipfix::test
