#pragma once

#include <functional>

class QObject;

namespace clipfix {

// Runs `work` on the interface thread and comes back when it is done: at once when called there,
// else through the event loop. A modal dialog's loop serves it as well, so a worker and a dialog do
// not lock each other out.
void RunOnInterfaceThread(const std::function<void()>& work);

// Hands `work` to the thread of `receiver` and does not wait. It is not run when the receiver goes
// before its turn comes.
void PostTo(QObject& receiver, const std::function<void()>& work);

}  // namespace clipfix
