#pragma once

#include <QString>
#include <QStringList>
#include <filesystem>

namespace clipfix {

inline constexpr const char* kUpdaterProgram = "kcupdate";

// The updater's arguments at the start of the program: it looks in silence.
[[nodiscard]] QStringList SilentUpdaterArguments();

// Starts a program that lies in `folder` and lets it run on its own. False when it cannot be
// started.
bool StartSibling(const std::filesystem::path& folder, const QString& program,
                  const QStringList& arguments);

}  // namespace clipfix
