#include "repairavi/percent_meter.h"

namespace clipfix {

void PercentMeter::Step(std::uint64_t position) {
    place_->store(position, std::memory_order_relaxed);
    const std::uint32_t value = ValueAt(position);
    job_.state.g_nAviPercent = static_cast<int>(value);
    if (value == lastSent_) {
        return;
    }
    lastSent_ = value;
    job_.frontEnd.SendAviProgress();
    if (sent_) {
        sent_(static_cast<int>(value));
    }
}

std::uint64_t PercentMeter::NextChange(std::uint64_t position) const {
    const std::uint64_t next = position + 1;
    if (ValueAt(next) != lastSent_) {
        return next;
    }
    return (next / divisor_ + 1) * divisor_;
}

}  // namespace clipfix
