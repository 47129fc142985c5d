// Reads any bytes as an `avcC` and as an `hvcC` box. The input: the picture's width and height in
// two bytes each, and the box.

#include "codec/avc_configuration_record.h"
#include "codec/hevc_configuration_record.h"
#include "fuzz_input.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace clipfix;
    using fuzz::Demand;
    fuzz::Input input(data, size);
    const std::int32_t width = input.Big16();
    const std::int32_t height = input.Big16();
    const ByteView box = input.Rest();

    const CAVCDecoderConfigurationRecord avc(box);
    Demand(avc.size == box.size() && avc.lengthSizeMinusOne <= 3);
    Demand(avc.spsBytes.size() <= box.size() && avc.ppsBytes.size() <= box.size());
    Demand(avc.sps != nullptr || avc.spsBytes.empty());
    Demand(avc.pps != nullptr || avc.ppsBytes.empty());

    HVCDecoderConfigurationRecord hevc;
    hevc.Parse(box, width, height);
    const bool isRead = box.size() > 30 && box[30] > 2;
    Demand(isRead || (!hevc.vps && !hevc.sps && !hevc.pps));
    Demand(!hevc.sps || hevc.sps->pic_width_in_luma_samples / width == 1);
    return 0;
}
