#pragma once

#include <QObject>
#include <QString>
#include <filesystem>
#include <memory>
#include <optional>

#include "platform/player_link.h"

class QSocketNotifier;

namespace clipfix {

// Listens for the main window's messages. Where the socket cannot be made, the player goes without.
class LinkListener : public QObject {
    Q_OBJECT

  public:
    LinkListener(const std::filesystem::path& socket, QObject* parent);
    ~LinkListener() override;

    [[nodiscard]] bool IsListening() const { return ear_.has_value(); }

  Q_SIGNALS:
    // A sound record has come; one that is not sound is passed over.
    void FileNamed(const clipfix::platform::PlayerRecord& record);
    // The player is to end. It no longer listens when this is told.
    void CloseAsked();

  private:
    void TakeConnections();
    void Hear(ByteView message);

    std::optional<platform::PlayerEar> ear_;
    std::unique_ptr<QSocketNotifier> knock_;
};

}  // namespace clipfix
