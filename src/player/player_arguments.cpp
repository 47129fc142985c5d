#include "player/player_arguments.h"

namespace clipfix {

namespace {

constexpr std::string_view kBetween = "$$";
constexpr std::string_view kPlain = "$$$$0";
constexpr std::string_view kNewerDecoder = "$$$$1";

// Cuts `text` where a path ends that exists, or else at its first separator. Gives what stands
// behind the cut.
std::string_view CutBehindPath(std::string_view& text,
                               const std::function<bool(std::string_view)>& exists) {
    const std::size_t first = text.find(kBetween);
    if (first == std::string_view::npos) {
        return {};
    }
    std::size_t end = first;
    for (std::size_t at = first; at != std::string_view::npos; at = text.find(kBetween, at + 1)) {
        if (exists(text.substr(0, at))) {
            end = at;
            break;
        }
    }
    const std::string_view rest = text.substr(end + kBetween.size());
    text = text.substr(0, end);
    return rest;
}

std::string_view LastPart(std::string_view path) {
    const std::size_t slash = path.rfind('/');
    return slash == std::string_view::npos ? path : path.substr(slash + 1);
}

}  // namespace

PlayerArguments ParsePlayerArguments(std::string_view argument,
                                     const std::function<bool(std::string_view)>& exists) {
    PlayerArguments parsed;
    std::string_view path = argument;
    if (argument.find(kBetween) != std::string_view::npos && !exists(argument)) {
        parsed.needsNewerDecoder = argument.ends_with(kNewerDecoder);
        const bool isWhole = parsed.needsNewerDecoder || argument.ends_with(kPlain);
        if (isWhole) {
            path.remove_suffix(kPlain.size());
            if (const std::size_t at = path.rfind(kBetween); at != std::string_view::npos) {
                parsed.size = path.substr(at + kBetween.size());
                path = path.substr(0, at);
            }
            parsed.name = CutBehindPath(path, exists);
        } else {
            std::string_view rest = CutBehindPath(path, exists);
            const std::size_t at = rest.find(kBetween);
            parsed.name = rest.substr(0, at);
        }
    }
    parsed.path = path;
    if (parsed.name.empty()) {
        parsed.name = LastPart(path);
    }
    return parsed;
}

}  // namespace clipfix
