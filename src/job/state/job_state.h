#pragma once

#include <atomic>
#include <cstdint>
#include <string>

namespace clipfix {

// The state of the one repair job at a time that a window, or a command line, runs. It is handed
// down by reference; the names are those by which every part of the job knows its variables.
//
// Flags, percents and times are atomics: the interface thread writes the control flags and the
// workers poll them. Strings are not: by the order of the flow they are never written while
// another thread may read them (a worker writes the reference and output paths only while the
// interface offers no command that touches them). After a change of a flag that a worker may be
// waiting for, JobControl::Wake() has to be called.
//
// A flag is 0 or 1 and 0 at the start unless it says otherwise. Paths are as the system gives
// them; labels and texts are UTF-8.
struct JobState {
    // Kind and files of the job.
    std::atomic<int> g_bMovJob{0};     // 1 = QuickTime or MP4 job, 0 = AVI job
    std::string g_strCorruptPath;      // the damaged file; emptied when the file dialog opens
    std::string g_strCorruptName;      // its file name without folder
    std::string g_strCorruptExt;       // its extension without dot, in upper case
    std::string g_strCorruptLabel;     // its display text
    std::string g_strCorruptCopy;      // copy of g_strCorruptPath; the AVI engine reads this one
    std::string g_strReferencePath;    // the healthy reference; empty means none chosen yet
    std::string g_strReferenceName;    // its file name without folder
    std::string g_strReferenceLabel;   // its display text
    std::string g_strCheckedPath;      // what the structure check opens
    std::string g_strOutputPath;       // the repaired MOV file; in a preview of an AVI job its copy
    std::string g_strAviRepairedPath;  // the repaired AVI file
    std::string g_strSavePath;         // the destination chosen in the save dialog
    std::string g_strPlayerArgs;       // argument text for the preview player

    // The coders of the reference, and what else the engine of a MOV job leaves for the details.
    std::string g_strVideoCoderFormat;
    std::string g_strAudioCoderFormat;
    std::atomic<std::int64_t> g_liOutputSize{0};     // bytes of the output file so far
    std::atomic<std::uint64_t> g_ullCheckedSize{0};  // bytes of the file under structure check
    std::atomic<std::uint64_t> g_ullCheckedPos{0};   // file offset at which that check stands

    // What an AVI job leaves for the details, and the two work files of its engine.
    std::atomic<std::uint32_t> g_nAviVideoChunks{0};
    std::atomic<std::uint32_t> g_nAviAudioChunks{0};
    std::atomic<std::uint32_t> g_dwAviMicroSecPerFrame{0};  // as found, before any repair
    std::string g_szAviCodec;                               // four-character code, as bytes
    std::atomic<std::uint64_t> g_ullAviRiffBody{0};         // bytes of the output less 8
    std::string g_strAviIndexPath;
    std::string g_strAviThumbPath;

    // Job control flags.
    std::atomic<int> g_bRepairRunning{0};  // a job is between Repair and its end
    std::atomic<int> g_bRepairPaused{0};
    std::atomic<int> g_bRepairCancelled{0};  // the MOV engine leaves at its next check
    std::atomic<int> g_bAviContinue{0};      // the AVI engine leaves at its next check when 0
    std::atomic<int> g_lJobAlive{0};         // the structure check leaves when 0
    std::atomic<int> g_bJobFailed{0};        // the job ended in an error already reported
    std::atomic<int> g_bSaving{0};
    std::atomic<int> g_bSaveRunning{0};
    std::atomic<int> g_lSaveContinue{0};  // 0 makes the move's progress routine cancel the move
    std::atomic<int> g_bPlayerOpen{0};
    std::atomic<int> g_bProgressFresh{0};
    std::atomic<int> g_bAnimationStopped{0};

    // Message state. The kind is set just before a message dialog opens and is 0 after it closed:
    // 1 quit question, 2 cancel question, 3 note, 4 error or refusal, 5 no disk space.
    std::atomic<int> g_nMessageKind{0};
    std::atomic<int> g_bMessageYes{0};  // the last answer; 1 until a dialog ends with No or OK
    std::atomic<int> g_bMessageOpen{0};

    // 1 on a system whose major version is exactly 6; never so here.
    std::atomic<int> g_bMajorVersion6{0};

    // Percents from 0 to 100.
    std::atomic<int> g_nMovPercent{0};
    std::atomic<int> g_nAviPercent{0};
    std::atomic<int> g_nAviPercentShown{0};
    std::atomic<int> g_nSavePercent{0};
    std::atomic<int> g_nSavePercentShown{0};

    // Seconds since the epoch, and spans of seconds.
    std::atomic<std::int64_t> g_tStart{0};
    std::atomic<std::int64_t> g_tPause{0};
    std::atomic<std::int64_t> g_tsPaused{0};
    std::atomic<std::int64_t> g_tsPausedTotal{0};
    std::atomic<int> g_nPauseAccounted{0};  // 0 until the timer has folded in the last pause
    std::atomic<int> g_nFinishedJobs{0};    // since the window was last rebuilt

    // What could not be read of the damaged file, in bytes; the engines fill it in.
    std::atomic<std::uint64_t> bytesUnreadable{0};
    // Set by an engine when the output could not be written whole. The settled flow of the window
    // passes a failed write over; the command line reports it.
    std::atomic<int> writeFailed{0};
    std::string writeFailure;  // one sentence; empty while writeFailed is 0
};

}  // namespace clipfix
