#pragma once

#include <filesystem>
#include <string>

#include "base/result.h"
#include "platform/file.h"
#include "platform/folders.h"

namespace clipfix::cli {

// The name under which a repaired file appears, and the place where it is made. The work stands in
// a folder of its own beside it, so that the last step is a rename; whatever ends the process
// before that leaves nothing under the name.
class OutputFile {
  public:
    struct Inputs {
        std::filesystem::path damaged;
        std::filesystem::path reference;  // empty: none
    };

    // Refuses an output that is one of the inputs, that exists (unless `force`), that is no plain
    // file, or whose folder does not exist or cannot be written.
    static Result<OutputFile> Prepare(const std::filesystem::path& name, const Inputs& inputs,
                                      bool force);

    [[nodiscard]] const std::filesystem::path& Name() const { return name_; }
    [[nodiscard]] const std::filesystem::path& WorkFolder() const { return scratch_.Path(); }

    // Brings `made`, a file in the work folder, to the medium and then to its name. The first can
    // take long: `progress` is told of it, and may end it (Cancelled), with nothing published.
    Result<void> Publish(const std::filesystem::path& made,
                         const platform::TransferProgress& progress);

  private:
    OutputFile(std::filesystem::path name, platform::ScratchFolder scratch, bool force);

    std::filesystem::path name_;
    platform::ScratchFolder scratch_;
    bool force_;
};

// "<name>_repaired.mov" or ".avi" beside the damaged file.
[[nodiscard]] std::filesystem::path DefaultOutputName(const std::filesystem::path& damaged,
                                                      bool movJob);

}  // namespace clipfix::cli
