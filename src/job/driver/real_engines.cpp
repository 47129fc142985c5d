#include "job/driver/real_engines.h"

#include <filesystem>
#include <memory>

#include "repairavi/repair_avi.h"

namespace clipfix {

namespace {

class RealAviJob final : public AviJob {
  public:
    RealAviJob(JobContext context, const std::filesystem::path& workFolder, RecoveryCounts& counts)
        : state_(context.state), counts_(counts), engine_(context, workFolder) {}

    [[nodiscard]] CRepairAVI& Engine() { return engine_; }

    [[nodiscard]] int Repair() override {
        const int result = engine_.Repair();
        counts_.bytesRead = engine_.BytesScanned();
        counts_.videoChunks = counts_.videoSamples = state_.g_nAviVideoChunks;
        counts_.audioChunks = counts_.audioSamples = state_.g_nAviAudioChunks;
        // The code comes from the damaged file as it is; one that was never found is four zeros.
        counts_.videoFormat = state_.g_szAviCodec.substr(0, state_.g_szAviCodec.find('\0'));
        return result;
    }
    void CloseWorkFiles() override { engine_.CloseWorkFiles(); }

  private:
    JobState& state_;
    RecoveryCounts& counts_;
    CRepairAVI engine_;
};

}  // namespace

std::unique_ptr<MovJob> RealEngines::MakeMovJob(JobContext /*context*/) {
    return nullptr;
}

std::unique_ptr<AviJob> RealEngines::MakeAviJob(JobContext context) {
    counts_ = {};
    whyStandstill_.clear();
    auto job = std::make_unique<RealAviJob>(context, workFolder_, counts_);
    job->Engine().OnStandstill([this] {
        whyStandstill_ = CRepairAVI::StandstillReason();
        if (onStandstill_) {
            onStandstill_();
        }
    });
    return job;
}

}  // namespace clipfix
