#pragma once

#include <functional>

#include "gui/window_rig.h"

namespace clipfix::test {

// Two damaged films to be chosen in the window. The movie's structure cannot be read, so that the
// page of the reference is reached; otherwise they need not hold anything.
struct WalkedFilms {
    QString avi;
    QString movie;
};

// Films with these names, without their extensions, in the rig's own folder.
[[nodiscard]] WalkedFilms MakeWalkedFilms(const WindowRig& rig, const QString& name);

// Leads the window from Home through every page of a job and back to Home. `visit` is called on
// each with a name for it.
void WalkPages(WindowRig& rig, const WalkedFilms& films,
               const std::function<void(const char* page)>& visit);

}  // namespace clipfix::test
