#pragma once

#include <QObject>
#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>

namespace clipfix {

// The way of the workers to the interface thread: a call is run there, and its caller waits. When
// the window is left, every caller that still waits for its turn is let go, and later calls come
// back at once, so that a worker and the end of the program never wait for each other.
class InterfaceCalls : public QObject {
    Q_OBJECT

  public:
    InterfaceCalls() = default;

    // Runs `work` on the thread to which this object belongs and comes back when it is done; at
    // once when called there. The loop of a modal dialog serves it as well. False when it was not
    // run, because the window is being left.
    bool Run(const std::function<void()>& work);

    // From now on nothing is run any more. To be called on the interface thread, when none of its
    // event loops runs.
    void Leave();

  private:
    // One call. `work` belongs to the caller's stack and is not touched once it was given up.
    struct Call {
        enum class Stage { Waiting, Running, Done, GivenUp };
        const std::function<void()>* work = nullptr;
        Stage stage = Stage::Waiting;
    };
    void Serve(Call& call);

    std::mutex mutex_;
    std::condition_variable changed_;
    bool leaving_ = false;
};

}  // namespace clipfix
