#pragma once

#include <atomic>
#include <chrono>
#include <thread>
#include <utility>

#include "job/driver/real_engines.h"
#include "job/state/job_control.h"

namespace clipfix::test {

// The real engines, which stand at their beginning for as long as a test wants to look at a running
// job. While they stand they pass their checkpoint again and again.
class HeldEngines final : public JobEngines {
  public:
    explicit HeldEngines(std::filesystem::path workFolder) : real_(std::move(workFolder)) {}

    void Hold() { held_ = true; }
    void LetGo() { held_ = false; }
    // Whether an engine stands at its beginning and works, as far as passing checkpoints goes.
    [[nodiscard]] int Rounds() const { return rounds_; }

    std::unique_ptr<MovJob> MakeMovJob(JobContext context) override {
        return std::make_unique<HeldMovJob>(*this, context, real_.MakeMovJob(context));
    }
    std::unique_ptr<AviJob> MakeAviJob(JobContext context) override {
        return std::make_unique<HeldAviJob>(*this, context, real_.MakeAviJob(context));
    }

  private:
    void Stand(JobContext context, JobControl::Work work) {
        while (held_ && context.control.KeepGoing(work)) {
            ++rounds_;
            std::this_thread::sleep_for(std::chrono::milliseconds(2));
        }
    }

    class HeldMovJob final : public MovJob {
      public:
        HeldMovJob(HeldEngines& owner, JobContext context, std::unique_ptr<MovJob> real)
            : owner_(owner), context_(context), real_(std::move(real)) {}
        const GFile* Movie() const override { return real_->Movie(); }
        bool ReadStructure() override { return real_->ReadStructure(); }
        void FindSamples() override {
            owner_.Stand(context_, JobControl::Work::MovEngine);
            real_->FindSamples();
        }
        void WriteRepairedFile(const std::string& outputPath,
                               const std::string& corruptPath) override {
            real_->WriteRepairedFile(outputPath, corruptPath);
        }

      private:
        HeldEngines& owner_;
        JobContext context_;
        std::unique_ptr<MovJob> real_;
    };

    class HeldAviJob final : public AviJob {
      public:
        HeldAviJob(HeldEngines& owner, JobContext context, std::unique_ptr<AviJob> real)
            : owner_(owner), context_(context), real_(std::move(real)) {}
        int Repair() override {
            owner_.Stand(context_, JobControl::Work::AviEngine);
            return real_->Repair();
        }
        void CloseWorkFiles() override { real_->CloseWorkFiles(); }

      private:
        HeldEngines& owner_;
        JobContext context_;
        std::unique_ptr<AviJob> real_;
    };

    RealEngines real_;
    std::atomic<bool> held_{false};
    std::atomic<int> rounds_{0};
};

}  // namespace clipfix::test
