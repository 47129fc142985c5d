#include "shell/interface_calls.h"

#include <QThread>

#include "shell/interface_thread.h"

namespace clipfix {

bool InterfaceCalls::Run(const std::function<void()>& work) {
    const auto call = std::make_shared<Call>();
    {
        const std::lock_guard lock(mutex_);
        if (leaving_) {
            return false;
        }
        call->work = &work;
    }
    if (thread() == QThread::currentThread()) {
        work();
        return true;
    }
    PostTo(*this, [this, call] { Serve(*call); });
    std::unique_lock lock(mutex_);
    changed_.wait(lock, [&] {
        return call->stage == Call::Stage::Done ||
               (leaving_ && call->stage == Call::Stage::Waiting);
    });
    if (call->stage == Call::Stage::Waiting) {
        call->stage = Call::Stage::GivenUp;
        return false;
    }
    return true;
}

void InterfaceCalls::Serve(Call& call) {
    {
        const std::lock_guard lock(mutex_);
        if (leaving_ || call.stage == Call::Stage::GivenUp) {
            return;
        }
        call.stage = Call::Stage::Running;
    }
    (*call.work)();
    {
        const std::lock_guard lock(mutex_);
        call.stage = Call::Stage::Done;
    }
    changed_.notify_all();
}

void InterfaceCalls::Leave() {
    {
        const std::lock_guard lock(mutex_);
        leaving_ = true;
    }
    changed_.notify_all();
}

}  // namespace clipfix
