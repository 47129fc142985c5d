// Reads any bytes as an `esds` atom.

#include "codec/mpeg4_descriptors.h"
#include "fuzz_input.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace clipfix;
    using fuzz::Demand;
    const ByteView atom(data, size);
    const CEsdsDecoder esds(atom);
    Demand(esds.ssize == ReadBig32(atom, 0));
    Demand(!esds.objectDescriptor || (size > 13 && atom[12] == 3));
    if (const auto specific = esds.DecoderSpecificBytes()) {
        Demand(!specific->empty() && specific->size() < 255);
    }
    if (esds.objectDescriptor && esds.objectDescriptor->slConfig) {
        Demand(esds.objectDescriptor->slConfig->bytes.size() <= 255);
    }
    // The descriptors by themselves, with payloads of any length.
    Demand(CObjectDescriptor(atom).length == (size & 0xFFU));
    Demand(CDecoderConfigDescriptor(atom).length == (size & 0xFFU));
    return 0;
}
