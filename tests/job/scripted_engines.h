#pragma once

#include <functional>
#include <string>

#include "job/driver/job_engines.h"
#include "support/job_log.h"
#include "support/temp_folder.h"

namespace clipfix::test {

// Engines that do what the test says, on the worker thread, and write down that they were called.
// Without a script each step succeeds: the check finds a movie, the writer makes a file of ten
// bytes, the AVI pass as well.
//
// The lines: "make MOV engine", "check <path>", "find samples", "write <output> from <damaged>",
// "make AVI engine", "repair <path>", "close work files".
class ScriptedEngines final : public JobEngines {
  public:
    ScriptedEngines(JobLog& log, std::filesystem::path workFolder)
        : log_(log), workFolder_(std::move(workFolder)) {}

    std::function<bool(JobContext)> check = [](JobContext) { return true; };
    std::function<void(JobContext)> find = [](JobContext) {};
    std::function<void(JobContext, const std::string& output)> write = WriteTenBytes;
    std::function<int(JobContext)> repair = [](JobContext job) {
        WriteTenBytes(job, job.state.g_strAviRepairedPath);
        return 1;
    };

    static void WriteTenBytes(JobContext job, const std::string& output) {
        WriteFile(output, ByteVector(10, 0x42));
        job.state.g_liOutputSize = 10;
    }

    [[nodiscard]] std::unique_ptr<MovJob> MakeMovJob(JobContext context) override;
    [[nodiscard]] std::unique_ptr<AviJob> MakeAviJob(JobContext context) override;

  private:
    class Mov;
    class Avi;
    JobLog& log_;
    std::filesystem::path workFolder_;
};

}  // namespace clipfix::test
