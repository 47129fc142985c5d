#include "shell/help_pages.h"

#include <QFile>
#include <QFileInfo>
#include <array>

namespace clipfix {

QUrl FindPage(const WindowParts& parts, const QString& address) {
    QUrl whole(address);
    if (!whole.scheme().isEmpty()) {
        return whole;
    }
    const std::array<std::filesystem::path, 3> folders{
        parts.programFolder, parts.programFolder / "help", parts.sharedFolder / "help"};
    const auto fileIn = [&](const std::filesystem::path& folder) {
        return QFile::decodeName(QByteArray::fromStdString(folder.string())) + QLatin1Char('/') +
               whole.path();
    };
    QString file = fileIn(folders[0]);
    for (const auto& folder : folders) {
        if (QFileInfo::exists(fileIn(folder))) {
            file = fileIn(folder);
            break;
        }
    }
    QUrl page = QUrl::fromLocalFile(file);
    if (whole.hasFragment()) {
        page.setFragment(whole.fragment());
    }
    return page;
}

}  // namespace clipfix
