#pragma once

#include <QString>

namespace clipfix {

// A place in a film of `duration` seconds as a person reads it: "1:05", and "0:01:05" where the
// film is an hour long or longer. Parts of a second are dropped; what is below zero counts as zero.
[[nodiscard]] QString TimeText(double seconds, double duration);

}  // namespace clipfix
