#include "support/scripted_front_end.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <gtest/gtest.h>
#include <utility>

namespace clipfix::test {

namespace {

std::string Describe(const TextStyle& style) {
    char colours[80];
    std::snprintf(colours, sizeof colours, " (%d px, %06X, ", style.height, style.colour);
    std::string text = colours + std::string(style.face);
    if (style.fill) {
        std::snprintf(colours, sizeof colours, ", on %06X", *style.fill);
        text += colours;
    }
    return text + ")";
}

std::string NameOf(MessageAnswer answer) {
    switch (answer) {
        case MessageAnswer::Yes:
            return "Yes";
        case MessageAnswer::No:
            return "No";
        case MessageAnswer::Ok:
            break;
    }
    return "Ok";
}

}  // namespace

std::string NameOf(JobControlId control) {
    constexpr std::array kNames = {"Title",
                                   "AddFile",
                                   "ChooseReference",
                                   "WhyHealthyLink",
                                   "StatusText",
                                   "ProgressBar",
                                   "StartTimeCaption",
                                   "StartTimeValue",
                                   "ElapsedTimeCaption",
                                   "ElapsedTimeValue",
                                   "PercentText",
                                   "DetailsGrid",
                                   "PlayPicture",
                                   "BusyAnimation",
                                   "Repair",
                                   "Pause",
                                   "Cancel",
                                   "Back",
                                   "Home",
                                   "Preview",
                                   "Save",
                                   "Hint",
                                   "SelectedText",
                                   "CorruptedLabel",
                                   "ReferenceText",
                                   "PathLabel"};
    static_assert(kNames.size() == static_cast<std::size_t>(JobControlId::PathLabel) + 1);
    return kNames.at(static_cast<std::size_t>(control));
}

ScriptedFrontEnd::~ScriptedFrontEnd() {
    for (const auto& answer : answers_) {
        ADD_FAILURE() << "this dialog never opened: " << answer.text;
    }
    for (const auto& hook : hooks_) {
        ADD_FAILURE() << "this never happened: " << hook.line;
    }
}

void ScriptedFrontEnd::WillAnswer(std::string text, MessageAnswer answer,
                                  std::function<void()> whileOpen) {
    const std::lock_guard lock(script_);
    answers_.push_back({std::move(text), answer, std::move(whileOpen)});
}

void ScriptedFrontEnd::AnswerAnything(
    std::function<MessageAnswer(const std::string& text)> answers) {
    const std::lock_guard lock(script_);
    answerAnything_ = std::move(answers);
}

void ScriptedFrontEnd::Before(std::string line, std::function<void()> call) {
    const std::lock_guard lock(script_);
    hooks_.push_back({std::move(line), std::move(call)});
}

Lines ScriptedFrontEnd::KeysRead() const {
    const std::lock_guard lock(script_);
    return keysRead_;
}

std::string ScriptedFrontEnd::Text(std::string_view key) {
    const std::lock_guard lock(script_);
    keysRead_.emplace_back(key);
    return std::string(key);
}

std::string ScriptedFrontEnd::Visible() const {
    const std::lock_guard lock(script_);
    std::string names;
    for (const auto control : visible_) {
        names += (names.empty() ? "" : " ") + test::NameOf(control);
    }
    return names;
}

void ScriptedFrontEnd::ShowDetails() {
    Write("details");
    using enum JobControlId;
    const std::lock_guard lock(script_);
    for (const auto control : {BusyAnimation, StatusText, ProgressBar, StartTimeCaption,
                               StartTimeValue, ElapsedTimeCaption, ElapsedTimeValue, PercentText}) {
        visible_.erase(control);
    }
    visible_.insert({DetailsGrid, PlayPicture});
}

void ScriptedFrontEnd::RebuildSections() {
    Write("rebuild sections");
    const std::lock_guard lock(script_);
    visible_ = {JobControlId::AddFile, JobControlId::Hint};
}

void ScriptedFrontEnd::SetVisible(JobControlId control, bool visible) {
    {
        const std::lock_guard lock(script_);
        if (visible) {
            visible_.insert(control);
        } else {
            visible_.erase(control);
        }
    }
    Write((visible ? "show " : "hide ") + test::NameOf(control));
}

void ScriptedFrontEnd::SetEnabled(JobControlId control, bool enabled) {
    Write((enabled ? "enable " : "disable ") + test::NameOf(control));
}

void ScriptedFrontEnd::SetText(JobControlId control, const std::string& text,
                               const TextStyle& style) {
    Write(test::NameOf(control) + " = " + text +
          (style == TextStyle{} ? std::string() : Describe(style)));
}

void ScriptedFrontEnd::SetBar(int percent) {
    Write("bar " + std::to_string(percent));
}

void ScriptedFrontEnd::Redraw(JobSection section) {
    constexpr std::array kNames = {"Top", "Centre", "Bottom", "Frame"};
    Write(std::string("redraw ") + kNames.at(static_cast<std::size_t>(section)));
}

void ScriptedFrontEnd::StartBusyAnimation(bool ofSave) {
    Write(ofSave ? "animate save" : "animate repair");
}

void ScriptedFrontEnd::RunMessageDialog(const std::string& text, const std::string& title,
                                        const std::string& firstLabel,
                                        const std::string& secondLabel) {
    state_.g_bMessageOpen = 1;
    const Answer answer = TakeAnswer(text);
    Write("dialog " + std::to_string(state_.g_nMessageKind) + ": " + text + " | " + title + " | " +
          firstLabel + " | " + secondLabel);
    if (answer.whileOpen) {
        answer.whileOpen();
    }
    // Written before the answer is given, so that what the answer sets free stands behind it.
    Write("answered " + NameOf(answer.answer));
    CloseMessage(state_, answer.answer);
}

void ScriptedFrontEnd::RunSystemBox(const std::string& text, const std::string& title) {
    Write("box: " + text + " | " + title);
}

void ScriptedFrontEnd::SendAviProgress() {
    Write("message 800B");
    if (onAviProgress) {
        onAviProgress();
    }
}

void ScriptedFrontEnd::StartTimer(int id, int milliseconds) {
    Write("timer " + std::to_string(id) + ": " + std::to_string(milliseconds) + " ms");
}

void ScriptedFrontEnd::StopTimer(int id) {
    Write("stop timer " + std::to_string(id));
}

std::optional<std::string> ScriptedFrontEnd::AskSavePath(const SaveDialogRequest& request) {
    Write("ask save path: " + request.name + " | " + request.defaultExtension + " | " +
          request.filter + " | " + std::to_string(request.flags));
    if (savePaths_.empty()) {
        return std::nullopt;
    }
    auto path = std::move(savePaths_.front());
    savePaths_.pop_front();
    return path;
}

void ScriptedFrontEnd::Write(const std::string& line) {
    std::function<void()> call;
    {
        const std::lock_guard lock(script_);
        const auto hook = std::find_if(hooks_.begin(), hooks_.end(),
                                       [&](const Hook& each) { return each.line == line; });
        if (hook != hooks_.end()) {
            call = std::move(hook->call);
            hooks_.erase(hook);
        }
    }
    if (call) {
        call();
    }
    log_.Add(line);
}

ScriptedFrontEnd::Answer ScriptedFrontEnd::TakeAnswer(const std::string& text) {
    const std::lock_guard lock(script_);
    const auto known = std::find_if(answers_.begin(), answers_.end(),
                                    [&](const Answer& each) { return each.text == text; });
    if (known == answers_.end() && answerAnything_) {
        return {text, answerAnything_(text), {}};
    }
    if (known == answers_.end()) {
        ADD_FAILURE() << "a dialog that the script does not know: " << text;
        return {text, MessageAnswer::Ok, {}};
    }
    Answer answer = std::move(*known);
    answers_.erase(known);
    return answer;
}

}  // namespace clipfix::test
