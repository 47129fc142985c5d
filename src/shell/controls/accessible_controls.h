#pragma once

namespace clipfix {

// Tells screen readers what the controls are that no toolkit class stands for: the link, the
// progress bar with its value, the animated picture. To be called once, before windows are made.
void InstallAccessibleControls();

}  // namespace clipfix
