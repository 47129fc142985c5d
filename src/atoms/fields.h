#pragma once

#include <concepts>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "atoms/atom_block.h"
#include "base/bytes.h"

namespace clipfix {

// One description of an atom's layout serves reading, writing and sizing. An atom lists its fields
// once, in their on-disk order, in a static template:
//
//     template <typename Self, typename Visitor>
//     static void Fields(Self& self, Visitor& visit) { visit(self.size, self.type, ...); }
//
// A field's width on disk is that of its type; all numbers are big-endian.

// Reads each field in turn; a field outside the bytes is zero.
class FieldReader {
  public:
    explicit FieldReader(ByteView bytes, std::size_t at = 0) noexcept : bytes_(bytes), at_(at) {}

    template <std::unsigned_integral... T>
    void operator()(T&... fields) noexcept {
        (Read(fields), ...);
    }

  private:
    template <typename T>
    void Read(T& field) noexcept {
        field = static_cast<T>(detail::ReadBig<sizeof(T)>(bytes_, at_));
        at_ += sizeof(T);
    }

    ByteView bytes_;
    std::size_t at_;
};

// Appends each field in turn to an image.
class FieldWriter {
  public:
    explicit FieldWriter(ByteVector& image) noexcept : image_(image) {}

    template <std::unsigned_integral... T>
    void operator()(const T&... fields) {
        (Append(fields), ...);
    }

  private:
    template <typename T>
    void Append(T field) {
        const std::size_t at = image_.size();
        image_.resize(at + sizeof(T));
        StoreBig(image_, at, field, sizeof(T));
    }

    ByteVector& image_;
};

// Adds up the widths.
class FieldCounter {
  public:
    template <std::unsigned_integral... T>
    constexpr void operator()(const T&... /*fields*/) noexcept {
        bytes_ += (sizeof(T) + ... + 0);
    }
    [[nodiscard]] constexpr std::size_t Bytes() const noexcept { return bytes_; }

  private:
    std::size_t bytes_ = 0;
};

// The bytes that the fields of an atom take on disk.
template <typename Atom>
[[nodiscard]] constexpr std::uint32_t BytesOfFields(const Atom& atom) noexcept {
    FieldCounter counter;
    Atom::Fields(atom, counter);
    return static_cast<std::uint32_t>(counter.Bytes());
}

// The bytes that one entry of a table takes on disk: a number, or a structure with Fields.
template <typename Entry>
[[nodiscard]] constexpr std::size_t BytesOnDisk() noexcept {
    if constexpr (std::unsigned_integral<Entry>) {
        return sizeof(Entry);
    } else {
        return BytesOfFields(Entry{});
    }
}

// Reads the fixed layout of an atom. Its `size` is the length that the parent passed, and not the
// number that stands in its first four bytes.
template <typename Atom>
void ReadFields(Atom& atom, const AtomBlock& block) {
    FieldReader reader(block.bytes);
    Atom::Fields(atom, reader);
    atom.size = block.length;
}

template <typename Atom>
void AppendFields(ByteVector& image, const Atom& atom) {
    FieldWriter writer(image);
    Atom::Fields(atom, writer);
}

// The image of an atom that is nothing but its fields.
template <typename Atom>
[[nodiscard]] ByteVector ImageOf(const Atom& atom) {
    ByteVector image;
    image.reserve(BytesOfFields(atom));
    AppendFields(image, atom);
    return image;
}

// The entries of a table from `at` on: `count` as the table states it, but only those that fit.
// The count sizes nothing before it was compared with the bytes that are there.
template <typename Entry>
[[nodiscard]] std::vector<Entry> ReadEntries(const AtomBlock& block, std::size_t at,
                                             std::uint32_t count) {
    constexpr std::size_t kWidth = BytesOnDisk<Entry>();
    const std::size_t room = block.bytes.size() > at ? (block.bytes.size() - at) / kWidth : 0;
    const std::size_t fitting = room < count ? room : count;
    std::vector<Entry> entries(fitting);
    FieldReader reader(block.bytes, at);
    for (Entry& entry : entries) {
        if constexpr (std::unsigned_integral<Entry>) {
            reader(entry);
        } else {
            Entry::Fields(entry, reader);
        }
    }
    return entries;
}

// Appends the entries of a table behind its head.
template <typename Entry>
void AppendEntries(ByteVector& image, const std::vector<Entry>& entries) {
    constexpr std::size_t kWidth = BytesOnDisk<Entry>();
    image.reserve(image.size() + entries.size() * kWidth);
    FieldWriter writer(image);
    for (const Entry& entry : entries) {
        if constexpr (std::unsigned_integral<Entry>) {
            writer(entry);
        } else {
            Entry::Fields(entry, writer);
        }
    }
}

}  // namespace clipfix
