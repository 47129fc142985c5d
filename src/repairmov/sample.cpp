#include "repairmov/sample.h"

namespace clipfix {

std::string_view TextOf(SampleName name) {
    switch (name) {
        case SampleName::Avc1:
            return "AVC1";
        case SampleName::Hvc1:
            return "HVC1";
        case SampleName::Aac:
            return "AAC";
        case SampleName::Sowt:
            return "SOWT";
    }
    return "";
}

}  // namespace clipfix
