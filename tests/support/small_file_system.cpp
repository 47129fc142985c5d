#include "support/small_file_system.h"

#include <string>
#include <sys/mount.h>

namespace clipfix::test {

SmallFileSystem::SmallFileSystem(std::uint64_t bytes) {
    const std::string size = "size=" + std::to_string(bytes);
    isMounted_ = ::mount("clipfix-test", folder_.Path().c_str(), "tmpfs", MS_NOSUID | MS_NODEV,
                         size.c_str()) == 0;
}

SmallFileSystem::~SmallFileSystem() {
    if (isMounted_) {
        static_cast<void>(::umount2(folder_.Path().c_str(), MNT_DETACH));
    }
}

}  // namespace clipfix::test
