#pragma once

#include <QUrl>

#include "shell/sections/section.h"

namespace clipfix {

// The address of a page as a text names it: a whole one ("https://...") stands; the name of a help
// page, with or without a place in it ("kc-clipfix.html#healthy-video"), is looked for beside the
// executable and in the installed documentation. A page that is nowhere counts as beside the
// executable.
[[nodiscard]] QUrl FindPage(const WindowParts& parts, const QString& address);

}  // namespace clipfix
