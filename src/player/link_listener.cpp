#include "player/link_listener.h"

#include <QSocketNotifier>
#include <QTimer>
#include <array>
#include <cerrno>
#include <functional>
#include <unistd.h>
#include <utility>

namespace clipfix {

namespace {

constexpr int kPatienceMilliseconds = 2000;
// One byte more than the longest message tells a message that is too long.
constexpr std::size_t kMostBytes = platform::kPlayerRecordSize + 1;

// One connection, from its first byte to its end. Removes itself; a sender that falls silent is
// left after a while.
class Connection : public QObject {
  public:
    Connection(int handle, std::function<void(ByteView)> hear, QObject* parent)
        : QObject(parent),
          handle_(handle),
          hear_(std::move(hear)),
          more_(handle, QSocketNotifier::Read) {
        connect(&more_, &QSocketNotifier::activated, this, [this] { Read(); });
        QTimer::singleShot(kPatienceMilliseconds, this, [this] { deleteLater(); });
    }
    Connection(const Connection&) = delete;
    Connection& operator=(const Connection&) = delete;
    ~Connection() override {
        more_.setEnabled(false);
        ::close(handle_);
    }

  private:
    void Read() {
        std::array<std::uint8_t, kMostBytes> piece{};
        const ssize_t got = ::read(handle_, piece.data(), piece.size());
        if (got > 0) {
            AppendBytes(message_, ByteView(piece).first(static_cast<std::size_t>(got)));
        }
        const bool isOver = got == 0 || (got < 0 && errno != EAGAIN && errno != EINTR);
        if (isOver || message_.size() >= kMostBytes) {
            more_.setEnabled(false);
            hear_(message_);
            deleteLater();  // closes the connection, which is the answer
        }
    }

    int handle_;
    std::function<void(ByteView)> hear_;
    QSocketNotifier more_;
    ByteVector message_;
};

}  // namespace

LinkListener::LinkListener(const std::filesystem::path& socket, QObject* parent) : QObject(parent) {
    auto ear = platform::PlayerEar::Open(socket);
    if (!ear) {
        return;
    }
    ear_ = std::move(ear).Value();
    knock_ = std::make_unique<QSocketNotifier>(ear_->Handle(), QSocketNotifier::Read);
    connect(knock_.get(), &QSocketNotifier::activated, this, [this] { TakeConnections(); });
}

LinkListener::~LinkListener() = default;

void LinkListener::TakeConnections() {
    while (const auto handle = ear_->Accept()) {
        new Connection(
            *handle, [this](ByteView message) { Hear(message); }, this);
    }
}

void LinkListener::Hear(ByteView message) {
    if (message.size() == platform::kPlayerCloseMessage.size() &&
        MatchesAt(message, 0, platform::kPlayerCloseMessage)) {
        knock_.reset();
        ear_.reset();
        // After the answer has been given.
        QMetaObject::invokeMethod(
            this, [this] { Q_EMIT CloseAsked(); }, Qt::QueuedConnection);
        return;
    }
    if (const auto record = platform::ParsePlayerRecord(message)) {
        Q_EMIT FileNamed(*record);
    }
}

}  // namespace clipfix
