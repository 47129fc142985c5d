#include "shell/interface_thread.h"

#include <QCoreApplication>
#include <QMetaObject>
#include <QThread>

namespace clipfix {

namespace {

void Invoke([[maybe_unused]] QObject& receiver, [[maybe_unused]] const std::function<void()>& work,
            [[maybe_unused]] Qt::ConnectionType type) {
    // The analyser cannot see that the toolkit frees what it makes of the function.
#ifndef __clang_analyzer__
    QMetaObject::invokeMethod(&receiver, work, type);
#endif
}

}  // namespace

void RunOnInterfaceThread(const std::function<void()>& work) {
    QCoreApplication* application = QCoreApplication::instance();
    if (application == nullptr || application->thread() == QThread::currentThread()) {
        work();
        return;
    }
    Invoke(*application, work, Qt::BlockingQueuedConnection);
}

void PostTo(QObject& receiver, const std::function<void()>& work) {
    Invoke(receiver, work, Qt::QueuedConnection);
}

}  // namespace clipfix
