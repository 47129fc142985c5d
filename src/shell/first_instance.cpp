#include "shell/first_instance.h"

#include <QLocalSocket>
#include <utility>

namespace clipfix {

namespace {

constexpr int kKnockMilliseconds = 1000;

QString SocketPath(const std::filesystem::path& folder) {
    return QString::fromStdString((folder / kInstanceName).string());
}

}  // namespace

FirstInstance::FirstInstance(const std::filesystem::path& folder,
                             std::function<void()> bringForward)
    : bringForward_(std::move(bringForward)) {
    connect(&server_, &QLocalServer::newConnection, this, [this] {
        while (QLocalSocket* knock = server_.nextPendingConnection()) {
            connect(knock, &QLocalSocket::disconnected, knock, &QObject::deleteLater);
            knock->disconnectFromServer();
            bringForward_();
        }
    });
    (void)QLocalServer::removeServer(SocketPath(folder));
    server_.setSocketOptions(QLocalServer::UserAccessOption);
    (void)server_.listen(SocketPath(folder));
}

bool KnockAtFirstInstance(const std::filesystem::path& folder) {
    QLocalSocket socket;
    socket.connectToServer(SocketPath(folder));
    return socket.waitForConnected(kKnockMilliseconds);
}

}  // namespace clipfix
