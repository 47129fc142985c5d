#include "shell/sibling_programs.h"

#include <QProcess>

namespace clipfix {

QStringList SilentUpdaterArguments() {
    return {QStringLiteral("/SilentCheck"), QStringLiteral("/NoIcon"),
            QStringLiteral("/NoUpdateSelf")};
}

bool StartSibling(const std::filesystem::path& folder, const QString& program,
                  const QStringList& arguments) {
    const QString place = QString::fromStdString(folder.string());
    return QProcess::startDetached(place + QLatin1Char('/') + program, arguments, place);
}

}  // namespace clipfix
