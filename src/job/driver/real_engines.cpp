#include "job/driver/real_engines.h"

#include <filesystem>
#include <memory>

#include "moviefile/movie_file.h"
#include "moviefile/reference_check.h"
#include "repairavi/repair_avi.h"
#include "repairmov/repair_mov.h"

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

class RealMovJob final : public MovJob {
  public:
    // Makes the engine before the structure is read: it clears what earlier jobs left behind.
    RealMovJob(JobContext context, RecoveryCounts& counts, std::string& whyReferenceFails)
        : state_(context.state),
          counts_(counts),
          whyReferenceFails_(whyReferenceFails),
          movie_(context),
          engine_(context, movie_) {}

    [[nodiscard]] const GFile* Movie() const override { return &movie_; }

    [[nodiscard]] bool ReadStructure() override {
        movie_.ReadStructure(state_.g_strCheckedPath);
        if (const auto fault = FindReferenceFault(movie_, state_)) {
            whyReferenceFails_ = SentenceOf(*fault);
        }
        return movie_.pMoov != nullptr;
    }
    void FindSamples() override { engine_.FindSamples(); }
    void WriteRepairedFile(const std::string& outputPath, const std::string& corruptPath) override {
        engine_.WriteRepairedFile(outputPath, corruptPath);
        const MovResults& results = engine_.Results();
        counts_ = {.videoChunks = results.videoChunks,
                   .audioChunks = results.audioChunks,
                   .videoSamples = results.videoSamples,
                   .audioSamples = results.audioSamples,
                   .bytesRead = results.bytesRead,
                   .videoFormat = results.videoFormat,
                   .audioFormat = results.audioFormat};
    }

  private:
    JobState& state_;
    RecoveryCounts& counts_;
    std::string& whyReferenceFails_;
    GFile movie_;
    CRepairMOV engine_;
};

}  // namespace

std::unique_ptr<MovJob> RealEngines::MakeMovJob(JobContext context) {
    counts_ = {};
    whyReferenceFails_.clear();
    return std::make_unique<RealMovJob>(context, counts_, whyReferenceFails_);
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
