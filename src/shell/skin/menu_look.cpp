#include "shell/skin/menu_look.h"

#include <QMenu>

#include "shell/skin/palette.h"

namespace clipfix::skin {

void ApplyMenuLook(QMenu& menu) {
    menu.setStyleSheet(
        QStringLiteral("QMenu { background: %1; border: 1px solid %2; padding: 6px; }"
                       "QMenu::item { padding: 7px 30px 7px 26px; color: %3;"
                       " border-radius: 5px; }"
                       "QMenu::item:selected { background: %4; color: %5; }"
                       "QMenu::indicator { left: 8px; width: 12px; height: 12px; }"
                       "QMenu::indicator:checked { image: url(:/skin/check.svg); }"
                       "QMenu::right-arrow { width: 8px; height: 8px; right: 8px;"
                       " image: url(:/skin/arrow.svg); }")
            .arg(Colour(kSectionCentre).name(), Colour(kFrame).name(), Colour(kText).name(),
                 Colour(kDropFillActive).name(), Colour(kLink).name()));
}

}  // namespace clipfix::skin
