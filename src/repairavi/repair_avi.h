#pragma once

#include <atomic>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <string>

#include "job/state/job_control.h"
#include "job/state/job_front_end.h"
#include "repairavi/avi_chunk.h"
#include "repairavi/work_files.h"

namespace clipfix {

enum class ScanEnd;

// The repair of one damaged AVI. It needs no reference: one forward pass reuses what survives of
// the file's head, chains its data chunks into a new file, and appends a fresh index. The damaged
// file is only ever read.
//
// One object serves one job. Its thumbnail file stays open after a good end, until the object goes
// or CloseWorkFiles is called. All operations belong to the worker thread, except StandsStill and
// BytesScanned, which any thread may ask.
class CRepairAVI {
  public:
    // `workFolder` is the "$tp" folder, or another one of the caller's; it is made if it does not
    // exist. The percent goes to 0.
    CRepairAVI(const JobContext& context, std::filesystem::path workFolder);

    // Repairs g_strCorruptCopy into g_strAviRepairedPath. Gives 1 when the pass ran to its end or
    // was cancelled (g_bAviContinue is then 0, and no file is left), and 0 when it gave up, with no
    // file left either. Shows no message. A pass that took no chunk is a success too; the counts
    // in the job's state tell. Fills bytesUnreadable and, where a write failed, writeFailed.
    int Repair();

    // Makes the same pass over g_strCorruptCopy and writes nothing: tells each chunk that Repair
    // would take, in its order. The result is that of Repair.
    int ListChunks(const AviChunkListener& onChunk);

    // For the shell's home step: closes and deletes the index and the thumbnail file.
    void CloseWorkFiles();

    // True from the moment at which the pass has recognised that its state can never change again:
    // it then waits for the cancel, without using the processor.
    [[nodiscard]] bool StandsStill() const { return standsStill_; }
    // One sentence for a person.
    [[nodiscard]] static std::string StandstillReason();
    // Called once, by the worker thread, when the pass begins to stand still. Whoever does not
    // want to wait for a person clears g_bAviContinue here.
    void OnStandstill(std::function<void()> call) { onStandstill_ = std::move(call); }

    // Called with every percent that is sent, behind its message.
    void OnPercentSent(std::function<void(int)> call) { onPercentSent_ = std::move(call); }

    // How far the pass has come in the damaged file, in bytes; also while it runs.
    [[nodiscard]] std::uint64_t BytesScanned() const { return bytesScanned_; }

    // The repair of something else than a plain file, for tests: `damaged` gives the bytes, and
    // the output goes to the same places. Null stands for a file that cannot be opened.
    int RepairFrom(const platform::ReadableFile* damaged);

  private:
    int RunJob(const platform::ReadableFile* damaged, const platform::File* damagedFile,
               const AviChunkListener* onChunk = nullptr);
    ScanEnd MakePass(const platform::ReadableFile& damaged, const platform::File* damagedFile,
                     const AviChunkListener* onChunk);
    int GiveUp();
    void WaitForCancel();
    void ClearState();

    JobContext job_;
    std::filesystem::path workFolder_;
    WorkFiles files_;
    std::atomic<bool> standsStill_{false};
    std::atomic<std::uint64_t> bytesScanned_{0};
    std::function<void()> onStandstill_;
    std::function<void(int)> onPercentSent_;
};

}  // namespace clipfix
