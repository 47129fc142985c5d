#include "scripted_engines.h"

#include "job/state/job_paths.h"

namespace clipfix::test {

class ScriptedEngines::Mov final : public MovJob {
  public:
    Mov(ScriptedEngines& script, JobContext job) : script_(script), job_(job) {
        script_.log_.Add("make MOV engine");
    }
    [[nodiscard]] bool ReadStructure() override {
        job_.state.g_lJobAlive = 1;
        script_.log_.Add("check " + job_.state.g_strCheckedPath);
        return script_.check(job_);
    }
    void FindSamples() override {
        script_.log_.Add("find samples");
        script_.find(job_);
    }
    void WriteRepairedFile(const std::string& outputPath, const std::string& corruptPath) override {
        script_.log_.Add("write " + outputPath + " from " + corruptPath);
        script_.write(job_, outputPath);
    }

  private:
    ScriptedEngines& script_;
    JobContext job_;
};

class ScriptedEngines::Avi final : public AviJob {
  public:
    Avi(ScriptedEngines& script, JobContext job) : script_(script), job_(job) {
        script_.log_.Add("make AVI engine");
    }
    [[nodiscard]] int Repair() override {
        script_.log_.Add("repair " + job_.state.g_strCorruptCopy);
        std::filesystem::create_directory(script_.workFolder_);
        job_.state.g_strAviRepairedPath = (script_.workFolder_ / kRepairedAviName).string();
        return script_.repair(job_);
    }
    void CloseWorkFiles() override { script_.log_.Add("close work files"); }

  private:
    ScriptedEngines& script_;
    JobContext job_;
};

std::unique_ptr<MovJob> ScriptedEngines::MakeMovJob(JobContext context) {
    return std::make_unique<Mov>(*this, context);
}

std::unique_ptr<AviJob> ScriptedEngines::MakeAviJob(JobContext context) {
    return std::make_unique<Avi>(*this, context);
}

}  // namespace clipfix::test
