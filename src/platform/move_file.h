#pragma once

#include <filesystem>

#include "base/result.h"
#include "platform/file.h"

namespace clipfix::platform {

// Moves a file, and never replaces one that stands at the destination (AlreadyExists). On one file
// system it is a rename, after which the file is brought to the medium and `progress` is told once.
// Otherwise the bytes are copied, inside the system where it offers that, with `progress` told at
// the start and after each piece; the copy is brought to the medium before the source is deleted.
// When `progress` answers false (Cancelled), and after a failure, the source stands as it was and
// there is no destination, or the one that stood there before. Only where the source cannot be
// deleted do both stand in the end.
Result<void> MoveFileWithProgress(const std::filesystem::path& source,
                                  const std::filesystem::path& destination,
                                  const TransferProgress& progress);

// Gives a file a new name in the same folder, replacing what stands there. The change is brought
// to the medium as far as the system offers it.
Result<void> ReplaceByRename(const std::filesystem::path& source,
                             const std::filesystem::path& destination);

}  // namespace clipfix::platform
