#pragma once

#include <filesystem>
#include <optional>
#include <string_view>

#include "base/result.h"

namespace clipfix::platform {

// The folder for what belongs to the user's running session: XDG_RUNTIME_DIR, or a folder of the
// user's own below /tmp that nobody else can enter. Empty where neither can be had.
[[nodiscard]] std::filesystem::path UserRuntimeFolder();

// One running instance of a name for each user. The lock belongs to the process: it is held until
// the object goes, and the system drops it when the process dies in whatever way, so that a lock
// file that was left behind means nothing.
class InstanceLock {
  public:
    // Takes the lock of `name`, which lies as a file in `folder`. Nothing when another process
    // holds it; an error when the system refuses the file.
    static Result<std::optional<InstanceLock>> Take(const std::filesystem::path& folder,
                                                    std::string_view name);

    InstanceLock(InstanceLock&& other) noexcept;
    InstanceLock& operator=(InstanceLock&& other) noexcept;
    InstanceLock(const InstanceLock&) = delete;
    InstanceLock& operator=(const InstanceLock&) = delete;
    ~InstanceLock();

  private:
    explicit InstanceLock(int handle) : handle_(handle) {}
    void Release() noexcept;

    int handle_ = -1;
};

}  // namespace clipfix::platform
