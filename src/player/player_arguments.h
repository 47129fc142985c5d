#pragma once

#include <functional>
#include <string>
#include <string_view>

namespace clipfix {

// What the player is started with.
struct PlayerArguments {
    std::string path;                // of the file to play; empty when none was given
    std::string name;                // the name under which the person knows it
    std::string size;                // for display, for example "12.50 MB"
    bool needsNewerDecoder = false;  // H.265 picture or AAC sound; this player plays both anyway
};

// Reads the player's one argument,
//
//     path $$ name $$ size $$ $$ 0-or-1            (written without the blanks)
//
// from its end, since a name may hold "$$" and a size cannot; of several places where the path may
// end, the first that `exists` agrees to counts, else the first of all. An argument that is a file
// as a whole is a path. What is missing at the end stays empty, and a missing name is the path's
// last part. Any text is good, an empty one too.
[[nodiscard]] PlayerArguments ParsePlayerArguments(
    std::string_view argument, const std::function<bool(std::string_view path)>& exists);

}  // namespace clipfix
