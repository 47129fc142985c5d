#pragma once

#include "base/result.h"
#include "platform/file.h"

namespace clipfix::platform {

// Brings a long file to its medium, which can take minutes on a slow one, so that whoever waits
// can see how far it is and can leave: `progress` is told at the start and after each stretch.
// When it answers false (Cancelled) the rest is left to the system.
Result<void> FlushInSteps(File& file, const TransferProgress& progress);

}  // namespace clipfix::platform
