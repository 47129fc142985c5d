#pragma once

namespace clipfix::platform {

// Whether this machine seems able to play sound: a sound server of the user, a sound card, or a
// sound set-up of the user's own. Without one, asking the sound libraries would only cost time and
// fill standard error with their complaints.
[[nodiscard]] bool HasSoundOutput();

}  // namespace clipfix::platform
