#include "cli/interrupt.h"

#include <csignal>
#include <ctime>
#include <utility>

namespace clipfix::cli {

namespace {

sigset_t InterruptSignals() {
    sigset_t signals;
    sigemptyset(&signals);
    for (const int number : {SIGINT, SIGTERM, SIGHUP}) {
        sigaddset(&signals, number);
    }
    return signals;
}

}  // namespace

InterruptWatch::InterruptWatch(std::function<void()> onInterrupt)
    : onInterrupt_(std::move(onInterrupt)) {
    const sigset_t signals = InterruptSignals();
    ::pthread_sigmask(SIG_BLOCK, &signals, nullptr);
    thread_ = std::thread([this] { Watch(); });
}

InterruptWatch::~InterruptWatch() {
    ended_ = true;
    thread_.join();
    const sigset_t signals = InterruptSignals();
    ::pthread_sigmask(SIG_UNBLOCK, &signals, nullptr);
}

void InterruptWatch::Watch() {
    const sigset_t signals = InterruptSignals();
    constexpr timespec kLook{0, 20'000'000};
    while (!ended_) {
        const int number = ::sigtimedwait(&signals, nullptr, &kLook);
        if (number <= 0) {
            continue;
        }
        if (interrupted_.exchange(true)) {
            std::_Exit(128 + number);
        }
        onInterrupt_();
    }
}

}  // namespace clipfix::cli
