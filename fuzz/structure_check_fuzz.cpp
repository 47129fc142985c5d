// Checks the structure of any bytes, and asks all there is to ask of what was found. Besides the
// absence of crashes, what must hold for every input: a tree that is kept has tracks, and a file
// without a fault has parameter sets and a length size.

#include <cstdint>

#include "fuzz_input.h"
#include "moviefile/reference_check.h"
#include "moviefile/structure_check.h"
#include "support/memory_file.h"
#include "support/mov_job.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace clipfix;
    test::MovJobWorld world;
    GFile movie(world.Context());
    StructureCheck(movie, world.Context()).RunOn(test::MemoryFile(ByteVector(data, data + size)));
    fuzz::Demand(movie.pMoov == nullptr || movie.GetTrackCount() > 0);
    fuzz::Demand(Describe(movie).tracks.size() == movie.GetTrackCount());
    fuzz::Demand(FindReferenceFault(movie, world.state) ||
                 (FindParameterSets(movie, world.state) && movie.GetNalLengthSize() > 0));
    return 0;
}
