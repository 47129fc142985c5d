#include "cli/terminal_front_end.h"

#include <cmath>
#include <cstdio>
#include <fmt/format.h>
#include <utility>

namespace clipfix::cli {

namespace {

constexpr std::string_view kClearLine = "\r\x1b[K";

std::string Bar(int percent) {
    constexpr int kWidth = 30;
    const int filled = percent * kWidth / 100;
    return std::string(static_cast<std::size_t>(filled), '#') +
           std::string(static_cast<std::size_t>(kWidth - filled), '.');
}

std::string Duration(double seconds) {
    const auto whole = std::llround(seconds);
    return whole >= 3600 ? fmt::format("{}:{:02}:{:02}", whole / 3600, whole / 60 % 60, whole % 60)
                         : fmt::format("{}:{:02}", whole / 60, whole % 60);
}

}  // namespace

TerminalFrontEnd::TerminalFrontEnd(JobState& state, Settings settings)
    : state_(state), settings_(settings), phaseStart_(std::chrono::steady_clock::now()) {}

void TerminalFrontEnd::SetText(JobControlId control, const std::string& text,
                               const TextStyle& /*style*/) {
    // The engines name their phases in the status text; each counts from 0 by itself.
    if (control == JobControlId::StatusText && text.find("IDS_") != 0) {
        BeginPhase(text.substr(0, text.find_last_not_of('.') + 1));
    }
}

void TerminalFrontEnd::BeginPhase(std::string name) {
    const std::lock_guard lock(mutex_);
    phase_ = std::move(name);
    phaseStart_ = std::chrono::steady_clock::now();
}

void TerminalFrontEnd::ShowFlush(std::uint64_t done, std::uint64_t total) {
    if (done == 0) {
        BeginPhase("Waiting for the disk");
    }
    DrawLine(total == 0 ? 100 : static_cast<int>(done * 100 / total));
}

void TerminalFrontEnd::SetBar(int percent) {
    if (state_.g_bMovJob == 1) {
        KeepPercent(percent);
    }
    DrawLine(percent);
}

void TerminalFrontEnd::RunMessageDialog(const std::string& /*text*/, const std::string& /*title*/,
                                        const std::string& /*firstLabel*/,
                                        const std::string& /*secondLabel*/) {
    CloseMessage(state_, MessageAnswer::Ok);
}

void TerminalFrontEnd::SendAviProgress() {
    KeepPercent(state_.g_nAviPercent);
    if (onAviProgress_) {
        onAviProgress_();
    }
}

void TerminalFrontEnd::KeepPercent(int percent) {
    if (settings_.keepPercents) {
        const std::lock_guard lock(mutex_);
        percents_.push_back(percent);
    }
}

void TerminalFrontEnd::DrawLine(int percent) {
    if (!settings_.showProgress || percent < 0 || percent > 100) {
        return;
    }
    const std::lock_guard lock(mutex_);
    const std::chrono::duration<double> taken = std::chrono::steady_clock::now() - phaseStart_;
    std::string rate;
    if (percent > 0 && taken.count() > 0.2) {
        const double done = static_cast<double>(settings_.damagedSize) * percent / 100;
        rate = fmt::format("  {:.0f} MB/s  {} left", done / taken.count() / 1e6,
                           Duration(taken.count() * (100 - percent) / percent));
    }
    fmt::print(stderr, "{}{} [{}] {:3}%{}", kClearLine, phase_, Bar(percent), percent, rate);
    std::fflush(stderr);
    lineStands_ = true;
}

void TerminalFrontEnd::ClearLine() {
    const std::lock_guard lock(mutex_);
    if (lineStands_) {
        fmt::print(stderr, "{}", kClearLine);
        std::fflush(stderr);
        lineStands_ = false;
    }
}

}  // namespace clipfix::cli
