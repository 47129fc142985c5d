#pragma once

#include <QCoreApplication>
#include <QMetaObject>
#include <QThread>
#include <utility>

namespace clipfix {

// Runs `work` on the interface thread and comes back when it is done: at once when called there,
// else through the event loop. A modal dialog's loop serves it as well, so a worker and a dialog do
// not lock each other out.
template <typename Work>
void RunOnInterfaceThread(Work&& work) {
    QCoreApplication* application = QCoreApplication::instance();
    if (application == nullptr || application->thread() == QThread::currentThread()) {
        std::forward<Work>(work)();
        return;
    }
    QMetaObject::invokeMethod(application, std::forward<Work>(work), Qt::BlockingQueuedConnection);
}

}  // namespace clipfix
