#pragma once

#include <QLocalServer>
#include <QObject>
#include <filesystem>
#include <functional>

namespace clipfix {

// The name of the instance lock and of the socket that goes with it.
inline constexpr const char* kInstanceName = "GlobalMutexKCF";

// The ear of the first instance: each knock of a later start calls `bringForward`. It listens in
// modal dialogs as well. Only the owner of the instance lock may have one, since it takes over the
// socket that a killed process left behind.
class FirstInstance : public QObject {
    Q_OBJECT

  public:
    FirstInstance(const std::filesystem::path& folder, std::function<void()> bringForward);
    [[nodiscard]] bool IsListening() const { return server_.isListening(); }

  private:
    QLocalServer server_;
    std::function<void()> bringForward_;
};

// Knocks at the first instance. False when nobody listens in `folder`.
bool KnockAtFirstInstance(const std::filesystem::path& folder);

}  // namespace clipfix
