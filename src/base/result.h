#pragma once

#include <cassert>
#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <variant>

namespace clipfix {

enum class ErrorKind {
    NotFound,          // the file or folder does not exist
    NotAFile,          // a folder, device, socket or pipe where a plain file is needed
    PermissionDenied,  // the system refuses the access
    NoSpace,           // the disk or the quota is full
    AlreadyExists,     // something stands where a new file was to be made
    ReadFailed,        // the system could not give the bytes
    WriteFailed,       // the system could not take the bytes
    Malformed,         // the bytes are not what their place demands
    Unsupported,       // sound, but outside what this program can use
    Cancelled,         // the person, or the caller, asked to stop
};

// Why a piece of work cannot go on. `text` is one clear sentence for a person, without a full
// stop's worth of jargon; `offset` is the file offset in bytes at which it was noticed, if any.
struct Error {
    ErrorKind kind = ErrorKind::Malformed;
    std::string text;
    std::optional<std::uint64_t> offset;
};

// A value, or the reason why there is none. True when good.
template <typename T>
class [[nodiscard]] Result {
  public:
    // Not explicit: a function returns a value or an Error as it is.
    Result(T value) : held_(std::in_place_index<0>, std::move(value)) {}
    Result(Error error) : held_(std::in_place_index<1>, std::move(error)) {}

    [[nodiscard]] bool IsGood() const noexcept { return held_.index() == 0; }
    explicit operator bool() const noexcept { return IsGood(); }

    // Asking a failed result for its value, or a good one for its error, is our own mistake.
    [[nodiscard]] T& Value() & {
        assert(IsGood());
        return *std::get_if<0>(&held_);
    }
    [[nodiscard]] const T& Value() const& {
        assert(IsGood());
        return *std::get_if<0>(&held_);
    }
    [[nodiscard]] T&& Value() && {
        assert(IsGood());
        return std::move(*std::get_if<0>(&held_));
    }
    [[nodiscard]] const Error& Failure() const {
        assert(!IsGood());
        return *std::get_if<1>(&held_);
    }

  private:
    std::variant<T, Error> held_;
};

// Done, or the reason why not.
template <>
class [[nodiscard]] Result<void> {
  public:
    Result() = default;
    Result(Error error) : error_(std::move(error)) {}

    [[nodiscard]] bool IsGood() const noexcept { return !error_.has_value(); }
    explicit operator bool() const noexcept { return IsGood(); }
    [[nodiscard]] const Error& Failure() const {
        assert(!IsGood());
        return *error_;
    }

  private:
    std::optional<Error> error_;
};

}  // namespace clipfix
