#pragma once

#include <map>
#include <optional>
#include <string>
#include <vector>

#include "base/bytes.h"
#include "codec/nalu.h"

namespace clipfix::test {

// One NAL unit as the syntax tracer of ffmpeg tells it: the first value of each syntax element, and
// the bits of all of them in order, without emulation prevention bytes.
struct TracedUnit {
    std::map<std::string, std::int64_t> values;
    std::vector<std::pair<std::string, std::string>> elements;  // name and bits

    [[nodiscard]] std::int64_t Value(const std::string& name) const;
    [[nodiscard]] bool Has(const std::string& name) const { return values.count(name) != 0; }
    // The bits from the first element of that name on.
    [[nodiscard]] std::string BitsFrom(const std::string& name) const;
};

// A movie of a few moving pictures without sound, made by ffmpeg, and what its tracer says of it.
struct EncodedStream {
    ByteVector file;
    std::vector<TracedUnit> recordUnits;  // the parameter sets of the sample description
    std::vector<TracedUnit> units;        // those of the samples, in the order of the file

    // The bytes of the first box of the type, from its size on; empty if there is none.
    [[nodiscard]] ByteView Box(const char (&type)[5]) const;
    // What CNALU makes of the units of the media data, one behind the other, from the first byte of
    // the media data on to the first refusal or the end.
    [[nodiscard]] std::vector<CNALU> Walk(const ReferenceParameterSets& reference) const;
    // The first bytes of each unit of the media data by its length words alone, as a probe has
    // them.
    [[nodiscard]] std::vector<ByteVector> Probes() const;
};

// `options` are ffmpeg's for the encoder, size and length of the stream. Ends the test program with
// a clear message when ffmpeg fails or is not there. Made once, and kept for all tests that ask.
const EncodedStream& Encode(const std::vector<std::string>& options);

}  // namespace clipfix::test
