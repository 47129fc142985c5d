#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>

#include "base/bytes.h"
#include "base/result.h"

namespace clipfix::platform {

// Something with bytes at 64-bit positions that can be read from any thread. Implemented by File,
// and by what tests put in its place.
class ReadableFile {
  public:
    virtual ~ReadableFile() = default;

    // Reads into `out` from `offset`, both in bytes. Gives how many bytes were read: fewer than
    // asked only at the file's end, 0 behind it. When it fails, `out` may hold anything.
    [[nodiscard]] virtual Result<std::size_t> ReadAt(std::uint64_t offset, ByteSpan out) const = 0;

    // The size in bytes as it was when the file was opened.
    [[nodiscard]] virtual std::uint64_t Size() const = 0;

    // Tells the system that a stretch will be wanted soon, if it can be told. Advice only.
    virtual void ExpectReads(std::uint64_t /*offset*/, std::uint64_t /*length*/) const {}
};

// Told how many bytes of how many a long step has behind it; answers whether to go on.
using TransferProgress = std::function<bool(std::uint64_t done, std::uint64_t total)>;

// One open plain file. Positions and sizes are in bytes and never wrap below 2^63. Each operation
// says where it works, so that no file pointer is shared between its users. Closing is by the
// destructor; what must be on the disk is flushed before.
class File final : public ReadableFile {
  public:
    enum class Existing {
        Replace,  // an existing file is emptied
        Refuse,   // an existing file is an error of kind AlreadyExists
    };

    // Opens a plain file that exists, for reading only; its times are left alone as far as the
    // system allows. A folder, a device or a pipe is refused as NotAFile, without waiting on it.
    static Result<File> OpenForReading(const std::filesystem::path& path);

    // Makes a file that can be read and written.
    static Result<File> Create(const std::filesystem::path& path, Existing existing);

    File(File&&) noexcept;
    File& operator=(File&&) noexcept;
    File(const File&) = delete;
    File& operator=(const File&) = delete;
    ~File() override;

    [[nodiscard]] Result<std::size_t> ReadAt(std::uint64_t offset, ByteSpan out) const override;
    [[nodiscard]] std::uint64_t Size() const override;
    void ExpectReads(std::uint64_t offset, std::uint64_t length) const override;

    // The size in bytes at this moment.
    [[nodiscard]] Result<std::uint64_t> CurrentSize() const;

    // Writes all of `bytes` at `offset`, growing the file where needed. After a failure the file
    // may hold a part of them.
    Result<void> WriteAt(std::uint64_t offset, ByteView bytes);

    // Makes the file exactly `size` bytes long: cuts it, or grows it by zeros.
    Result<void> SetEnd(std::uint64_t size);

    // Brings what was written to the medium.
    Result<void> Flush();

    // Has the system begin with that for a stretch that was written, without waiting for it. Done
    // as a long file is written, it leaves little for Flush, which nobody can interrupt.
    void BeginFlush(std::uint64_t offset, std::uint64_t length);

    // Waits until the bytes of a stretch are on the medium, where the system offers that. What else
    // belongs to the file, as its size, still wants Flush.
    Result<void> FlushStretch(std::uint64_t offset, std::uint64_t length);

    // Copies up to `length` bytes of `source` from `from` to `to` of this file inside the system,
    // without a buffer of ours. Gives how many were copied; 0 means that the system does not offer
    // it for these two files, or stands at the source's end, and the caller copies by itself.
    Result<std::uint64_t> CopyWithinSystem(const File& source, std::uint64_t from, std::uint64_t to,
                                           std::uint64_t length);

    // Whether the file lies on one of the file systems of this machine that can neither share
    // blocks between files nor copy on a side of their own, so that CopyWithinSystem goes through
    // memory page by page. Not known: false.
    [[nodiscard]] bool IsCopiedPageByPage() const;

    // Tells the system that the file will be read from front to back.
    void ExpectSequentialReads() const;

    // Whether both stand for the same file on the disk, whatever their paths say.
    [[nodiscard]] bool IsSameFileAs(const File& other) const;

  private:
    struct Handle;
    explicit File(std::unique_ptr<Handle> handle);
    std::unique_ptr<Handle> handle_;
};

}  // namespace clipfix::platform
