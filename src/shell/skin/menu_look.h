#pragma once

class QMenu;

namespace clipfix::skin {

// Gives a menu, and those below it, the look of the window: room around the entries, and the pale
// blue of a button under the mouse for the chosen one.
void ApplyMenuLook(QMenu& menu);

}  // namespace clipfix::skin
