#pragma once

#include <memory>
#include <string>

#include "job/state/job_front_end.h"

namespace clipfix {

class GFile;

// The engines as the driver calls them. The real ones stand in real_engines.h; tests of the job
// flow put their own here, so that each end of a job can be brought about.

// One MOV job: the structure check of g_strCheckedPath, then the engine on g_strCorruptPath.
class MovJob {
  public:
    virtual ~MovJob() = default;
    // The reference's movie, for the details of the finished job; null where there is none.
    [[nodiscard]] virtual const GFile* Movie() const { return nullptr; }
    // Runs the structure check. Whether the file holds a usable movie.
    [[nodiscard]] virtual bool ReadStructure() = 0;
    virtual void FindSamples() = 0;
    virtual void WriteRepairedFile(const std::string& outputPath,
                                   const std::string& corruptPath) = 0;
};

// One AVI job on g_strCorruptCopy.
class AviJob {
  public:
    virtual ~AviJob() = default;
    // 0 when the engine gave up; otherwise it ended, also after a cancel.
    [[nodiscard]] virtual int Repair() = 0;
    // Closes and deletes the work files that a good end leaves open.
    virtual void CloseWorkFiles() = 0;
};

class JobEngines {
  public:
    virtual ~JobEngines() = default;
    [[nodiscard]] virtual std::unique_ptr<MovJob> MakeMovJob(JobContext context) = 0;
    [[nodiscard]] virtual std::unique_ptr<AviJob> MakeAviJob(JobContext context) = 0;
};

}  // namespace clipfix
