#pragma once

#include "codec/h264_pps.h"
#include "codec/h264_sps.h"
#include "codec/h265_pps.h"
#include "codec/h265_sps.h"
#include "codec/h265_vps.h"
#include "codec/nalu.h"
#include "fuzz_input.h"

namespace clipfix::fuzz {

// The parameter sets of a reference, taken from the front of an input: a control byte (lowest bit:
// H.265; the next three: the length size), the picture's width and height in two bytes each, and a
// block for each of the sets, a video set first where there is one.
struct Reference {
    explicit Reference(Input& input) {
        const std::uint8_t control = input.Byte();
        isH265 = (control & 1U) != 0;
        lengthSize = ((control >> 1U) & 7U) % 5U;
        const std::int32_t width = input.Big16();
        const std::int32_t height = input.Big16();
        if (isH265) {
            static_cast<void>(vps.Parse(input.Block()));
            static_cast<void>(sps265.Parse(input.Block(), width, height));
            static_cast<void>(pps265.Parse(input.Block(), &sps265));
        } else {
            sps = CSPS(input.Block());
            pps = CPPS(input.Block());
        }
    }

    [[nodiscard]] ReferenceParameterSets View() const {
        return isH265 ? ReferenceParameterSets{nullptr, nullptr, &vps, &sps265, &pps265}
                      : ReferenceParameterSets{&sps, &pps, nullptr, nullptr, nullptr};
    }

    bool isH265 = false;
    std::uint32_t lengthSize = 0;
    CSPS sps;
    CPPS pps;
    CVPS vps;
    SPS_265 sps265;
    PPS_265 pps265;
};

}  // namespace clipfix::fuzz
