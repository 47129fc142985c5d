#include "platform/player_link.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstring>
#include <poll.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <system_error>
#include <unistd.h>
#include <utility>

#include "platform/instance_lock.h"
#include "platform/posix/system_error.h"

namespace clipfix::platform {

namespace {

using Clock = std::chrono::steady_clock;

constexpr std::chrono::milliseconds kPatience{1000};
constexpr int kWaitingConnections = 8;

// A descriptor that is closed with its owner.
class Descriptor {
  public:
    explicit Descriptor(int handle) : handle_(handle) {}
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    ~Descriptor() {
        if (handle_ >= 0) {
            ::close(handle_);
        }
    }
    [[nodiscard]] int Get() const { return handle_; }
    [[nodiscard]] bool IsOpen() const { return handle_ >= 0; }
    int Release() { return std::exchange(handle_, -1); }

  private:
    int handle_;
};

// The address of a socket file; nothing for a path that is empty or too long for one.
std::optional<sockaddr_un> AddressOf(const std::filesystem::path& socket) {
    const std::string& name = socket.native();
    sockaddr_un address{};
    if (name.empty() || name.size() >= sizeof(address.sun_path)) {
        return std::nullopt;
    }
    address.sun_family = AF_UNIX;
    std::copy(name.begin(), name.end(), std::begin(address.sun_path));
    return address;
}

// The system's calls take every kind of address by a pointer to this one.
const sockaddr* Generic(const sockaddr_un& address) {
    return reinterpret_cast<const sockaddr*>(&address);
}

int MakeSocket() {
    return ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
}

// A connection to the player; closed where nobody listens.
int Connect(const std::filesystem::path& socket) {
    const auto address = AddressOf(socket);
    if (!address) {
        return -1;
    }
    Descriptor handle(MakeSocket());
    // A local connection stands at once, or is refused: there is nothing to wait for.
    if (!handle.IsOpen() || ::connect(handle.Get(), Generic(*address), sizeof(*address)) != 0) {
        return -1;
    }
    return handle.Release();
}

// Waits for `events` until `deadline`.
bool WaitFor(int handle, short events, Clock::time_point deadline) {
    for (;;) {
        const auto left =
            std::chrono::duration_cast<std::chrono::milliseconds>(deadline - Clock::now()).count();
        pollfd wanted{handle, events, 0};
        const int ready = ::poll(&wanted, 1, static_cast<int>(std::max<std::int64_t>(left, 0)));
        if (ready > 0) {
            return true;
        }
        if (ready == 0 || errno != EINTR) {
            return false;
        }
    }
}

bool WriteAll(int handle, ByteView bytes, Clock::time_point deadline) {
    while (!bytes.empty()) {
        const ssize_t written = ::send(handle, bytes.data(), bytes.size(), MSG_NOSIGNAL);
        if (written >= 0) {
            bytes = bytes.subspan(static_cast<std::size_t>(written));
        } else if (errno != EINTR && (errno != EAGAIN || !WaitFor(handle, POLLOUT, deadline))) {
            return false;
        }
    }
    return true;
}

// Whether the other side closes the connection in time, which is the player's answer.
bool IsAnswered(int handle, Clock::time_point deadline) {
    while (WaitFor(handle, POLLIN, deadline)) {
        std::array<std::uint8_t, 64> passedOver{};
        const ssize_t got = ::recv(handle, passedOver.data(), passedOver.size(), 0);
        if (got == 0 || (got < 0 && errno == ECONNRESET)) {
            return true;
        }
        if (got < 0 && errno != EINTR && errno != EAGAIN) {
            return false;
        }
    }
    return false;
}

enum class Delivery { NobodyThere, Unanswered, Answered };

Delivery Deliver(const std::filesystem::path& socket, ByteView message) {
    const Descriptor handle(Connect(socket));
    if (!handle.IsOpen()) {
        return Delivery::NobodyThere;
    }
    const Clock::time_point deadline = Clock::now() + kPatience;
    const bool delivered = WriteAll(handle.Get(), message, deadline) &&
                           ::shutdown(handle.Get(), SHUT_WR) == 0 &&
                           IsAnswered(handle.Get(), deadline);
    return delivered ? Delivery::Answered : Delivery::Unanswered;
}

bool IsOwnUser(int connection) {
    ucred peer{};
    socklen_t size = sizeof(peer);
    return ::getsockopt(connection, SOL_SOCKET, SO_PEERCRED, &peer, &size) == 0 &&
           peer.uid == ::geteuid();
}

}  // namespace

std::filesystem::path PlayerSocketPath() {
    const std::filesystem::path folder = UserRuntimeFolder();
    return folder.empty() ? folder : folder / kPlayerName;
}

bool IsPlayerRunning(const std::filesystem::path& socket) {
    return Descriptor(Connect(socket)).IsOpen();
}

bool SendFileToPlayer(const std::filesystem::path& socket, std::string_view path) {
    return Deliver(socket, BuildPlayerRecord(path)) == Delivery::Answered;
}

bool ClosePlayer(const std::filesystem::path& socket) {
    ByteVector message;
    AppendText(message, kPlayerCloseMessage);
    return Deliver(socket, message) != Delivery::Unanswered;
}

Result<PlayerEar> PlayerEar::Open(const std::filesystem::path& socket) {
    const auto address = AddressOf(socket);
    if (!address) {
        return Error{ErrorKind::Unsupported, "no place for the player's socket", {}};
    }
    Descriptor handle(MakeSocket());
    std::error_code ignored;
    if (std::filesystem::symlink_status(socket, ignored).type() ==
        std::filesystem::file_type::socket) {
        std::filesystem::remove(socket, ignored);
    }
    if (!handle.IsOpen() || ::bind(handle.Get(), Generic(*address), sizeof(*address)) != 0 ||
        ::chmod(socket.c_str(), S_IRUSR | S_IWUSR) != 0 ||
        ::listen(handle.Get(), kWaitingConnections) != 0) {
        return posix::SystemError(ErrorKind::WriteFailed, "cannot make the player's socket", socket,
                                  errno);
    }
    return PlayerEar(handle.Release(), socket);
}

PlayerEar::PlayerEar(int handle, std::filesystem::path socket)
    : handle_(handle), socket_(std::move(socket)) {
    struct stat facts {};
    if (::lstat(socket_.c_str(), &facts) == 0) {
        device_ = facts.st_dev;
        inode_ = facts.st_ino;
    }
}

PlayerEar::PlayerEar(PlayerEar&& other) noexcept
    : handle_(std::exchange(other.handle_, -1)),
      socket_(std::move(other.socket_)),
      device_(other.device_),
      inode_(other.inode_) {}

PlayerEar& PlayerEar::operator=(PlayerEar&& other) noexcept {
    if (this != &other) {
        Close();
        handle_ = std::exchange(other.handle_, -1);
        socket_ = std::move(other.socket_);
        device_ = other.device_;
        inode_ = other.inode_;
    }
    return *this;
}

PlayerEar::~PlayerEar() {
    Close();
}

void PlayerEar::Close() noexcept {
    if (handle_ < 0) {
        return;
    }
    struct stat facts {};
    if (::lstat(socket_.c_str(), &facts) == 0 && facts.st_dev == device_ &&
        facts.st_ino == inode_) {
        ::unlink(socket_.c_str());
    }
    ::close(std::exchange(handle_, -1));
}

std::optional<int> PlayerEar::Accept() const {
    Descriptor connection(::accept4(handle_, nullptr, nullptr, SOCK_CLOEXEC | SOCK_NONBLOCK));
    if (!connection.IsOpen() || !IsOwnUser(connection.Get())) {
        return std::nullopt;
    }
    return connection.Release();
}

}  // namespace clipfix::platform
