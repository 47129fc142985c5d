#pragma once

#include <atomic>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <string>
#include <utility>

#include "job/driver/job_engines.h"

namespace clipfix {

// What a job found, for a report.
struct RecoveryCounts {
    std::uint64_t videoChunks = 0;
    std::uint64_t audioChunks = 0;
    std::uint64_t videoSamples = 0;
    std::uint64_t audioSamples = 0;
    std::uint64_t bytesRead = 0;
    // Four-character codes, empty where unknown.
    std::string videoFormat;
    std::string audioFormat;
};

// The engines of the program. One object serves one driver and outlives its jobs.
class RealEngines final : public JobEngines {
  public:
    // `workFolder` is where the AVI engine makes its files.
    explicit RealEngines(std::filesystem::path workFolder) : workFolder_(std::move(workFolder)) {}

    // Called on the worker when an engine finds that it cannot come any further and will wait for
    // a cancel.
    void OnStandstill(std::function<void()> callback) { onStandstill_ = std::move(callback); }
    [[nodiscard]] const std::string& WhyStandstill() const { return whyStandstill_; }

    // Why the reference of the last MOV job could not serve, as far as the program knows.
    [[nodiscard]] const std::string& WhyReferenceFails() const { return whyReferenceFails_; }

    // What the last job found; to be asked when no worker runs.
    [[nodiscard]] const RecoveryCounts& Counts() const { return counts_; }

    [[nodiscard]] std::unique_ptr<MovJob> MakeMovJob(JobContext context) override;
    [[nodiscard]] std::unique_ptr<AviJob> MakeAviJob(JobContext context) override;

  private:
    std::filesystem::path workFolder_;
    std::function<void()> onStandstill_;
    std::string whyStandstill_;
    std::string whyReferenceFails_;
    RecoveryCounts counts_;
};

}  // namespace clipfix
